// Running a verb and saying what it did.
#include "substitute/server/Program.h"

#include <objbase.h>

#include <string>

#include "substitute/base/Apartment.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "substitute/registration/Registration.h"
#include "substitute/server/CommandLine.h"
#include "substitute/server/Console.h"
#include "substitute/server/Serving.h"

namespace kemba::substitute {
namespace {

constexpr int kFailed = 1;
constexpr int kMisused = 2;

std::wstring Line(const std::wstring& text) {
    return std::wstring(kServerName) + L": " + text + L"\r\n";
}

void Tell(const RegistrationReport& report) {
    for (const std::wstring& line : report.done) {
        Say(Line(line));
    }
    for (const std::wstring& warning : report.warnings) {
        Complain(Line(L"warning: " + warning));
    }
}

} // namespace

int RunProgram(const CommandLine& commandLine) {
    using Verb = CommandLine::Verb;
    if (commandLine.verb == Verb::Usage) {
        Complain(kUsage);
        return kMisused;
    }
    // Multithreaded, so that many clients are served at once and a printer that keeps one of them waiting
    // holds up nobody else; the objects guard what they share.
    const Apartment apartment(COINIT_MULTITHREADED);
    ThrowIfFailed(apartment.Status(), L"starting the component runtime");
    switch (commandLine.verb) {
    case Verb::Register:
        Tell(RegisterServer(commandLine.scope, ContractTypes(), ProgramPath(), commandLine.replace));
        break;
    case Verb::Unregister: Tell(UnregisterServer(commandLine.scope, ContractTypes(), ProgramPath())); break;
    case Verb::Serve: Serve(); break;
    case Verb::Usage: break; // has been answered
    }
    return 0;
}

int ReportFailure(const Failure& failure) {
    Complain(Line(failure.reason));
    return kFailed;
}

} // namespace kemba::substitute
