// kemba-dal: an automation server for machines without the printer driver.
#include <windows.h>

#include <objbase.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/SystemLibraries.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "substitute/server/CommandLine.h"
#include "substitute/server/Registration.h"
#include "substitute/server/Serving.h"

namespace {

using namespace kemba::substitute;

constexpr int kFailed = 1;
constexpr int kMisused = 2;

/// Writes to standard error, or to the console that the program was started from, which a program of the
/// windows subsystem has to ask for.
void Complain(const std::wstring& text) {
    HANDLE output = GetStdHandle(STD_ERROR_HANDLE);
    if (!output || output == INVALID_HANDLE_VALUE) {
        AttachConsole(ATTACH_PARENT_PROCESS);
        output = GetStdHandle(STD_ERROR_HANDLE);
    }
    std::string bytes(text.size() * 3, '\0');
    const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                           bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    DWORD written = 0;
    WriteFile(output, bytes.data(), static_cast<DWORD>(length), &written, nullptr);
}

/// The component runtime of this thread. Multithreaded, so that many clients are served at once and a printer
/// that keeps one of them waiting holds up nobody else; the objects guard what they share.
class Apartment {
  public:
    Apartment() {
        ThrowIfFailed(CoInitializeEx(nullptr, COINIT_MULTITHREADED),
                      L"starting the component runtime failed");
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

int Run(const CommandLine& commandLine) {
    using Verb = CommandLine::Verb;
    if (commandLine.verb == Verb::Usage) {
        Complain(kUsage);
        return kMisused;
    }
    const Apartment apartment;
    const ContractTypes types;
    switch (commandLine.verb) {
    case Verb::Register: RegisterServer(commandLine.scope, types, ProgramPath()); break;
    case Verb::Unregister: UnregisterServer(commandLine.scope, types); break;
    default: Serve(); break;
    }
    return 0;
}

} // namespace

int wmain(int count, wchar_t** words) {
    OCore::TakeLibrariesFromTheSystemOnly();
    try {
        return Run(
            ParseCommandLine(std::vector<std::wstring_view>(words + (count > 0 ? 1 : 0), words + count)));
    } catch (...) {
        Complain(std::wstring(kServerName) + L": " + CurrentFailure().reason + L"\r\n");
        return kFailed;
    }
}
