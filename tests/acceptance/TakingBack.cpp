// Removing printers, ports, registrations, files and keys.
#include "tests/acceptance/TakingBack.h"

#include <windows.h>
#include <objbase.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "demo/FilePort.h"
#include "demo/LabelDriver.h"
#include "demo/Made.h"
#include "demo/PortTarget.h"
#include "demo/Printers.h"
#include "substitute/registration/RegistryKeys.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/ProcessRun.h"

namespace acceptance {
namespace {

bool TakeRegistration(const std::wstring& words) {
    const bool forUser = words.ends_with(L"/user");
    const auto run = forUser ? kit::RunProgram(L"kemba-dal.exe", {L"/unregserver", L"/user"})
                             : kit::RunProgram(L"kemba-dal.exe", {L"/unregserver"});
    return run.status == 0;
}

/// Each of these tests removes, before and after, all that any of them may have left.
bool TakeTestKeys(const std::wstring&) {
    return kit::RunProgram(L"registration_tests.exe", {L"--gtest_filter=Registration.MayBeRepeated"})
               .status == 0;
}

bool TakePrinter(const std::wstring& name) {
    demo::RemovePrinter(name);
    return !demo::PrinterExists(name);
}

bool TakeTarget(const std::wstring& port) {
    demo::DisconnectPort(port);
    return true;
}

bool TakeDriver(const std::wstring& name) {
    return demo::RemoveDriver(name.c_str());
}

bool TakeDefaultPrinter(const std::wstring& name) {
    if (demo::GetDefaultPrinterName() != name && demo::PrinterExists(name)) {
        demo::SetDefaultPrinterName(name);
    }
    return true;
}

bool TakeFile(const std::wstring& path) {
    return DeleteFileW(path.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND ||
           GetLastError() == ERROR_PATH_NOT_FOUND;
}

bool TakeFolder(const std::wstring& path) {
    if (!std::filesystem::path(path).filename().wstring().starts_with(kFolderBegin)) {
        return false;
    }
    std::error_code refused;
    std::filesystem::remove_all(path, refused);
    return !std::filesystem::exists(path, refused);
}

/// A class of a test's own.
bool TakeClass(const std::wstring& id) {
    CLSID known{};
    if (FAILED(CLSIDFromString(id.c_str(), &known))) { // an empty one, for all classes of the machine
        return false;
    }
    const LSTATUS status = RegDeleteTreeW(HKEY_LOCAL_MACHINE, (demo::kOwnClassesKey + id).c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

bool TakeMask(const std::wstring&) {
    using namespace kemba::substitute;
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks",
                       L"Brandle KEMBA CLI");
    for (const wchar_t* const key : {L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks",
                                     L"SOFTWARE\\Brandle\\Drivers", L"SOFTWARE\\Brandle"}) {
        RemoveKeyIfEmpty({HKEY_LOCAL_MACHINE, View::Bits64, key});
    }
    return true;
}

/// In the order in which they are taken back.
const struct Kind {
    const char* kind;
    bool (*take)(const std::wstring& name);
    int seconds = 0; ///< for which the spooler may hold on to it
} kKinds[] = {
    {kMadeRegistration, TakeRegistration},
    {kMadeTestKeys, TakeTestKeys},
    {demo::kMadePrinter, TakePrinter, 15},
    {demo::kMadeTarget, TakeTarget},
    {demo::kMadePort, demo::RemoveFilePort, 15},
    {demo::kMadeDriver, TakeDriver, 30},
    {kDefaultPrinter, TakeDefaultPrinter},
    {demo::kMadeFile, TakeFile},
    {kMadeFolder, TakeFolder},
    {demo::kMadeClass, TakeClass},
    {kMadeMask, TakeMask},
};

std::ptrdiff_t PlaceOf(const demo::Made& made) {
    return std::ranges::find(kKinds, made.kind, &Kind::kind) - std::begin(kKinds);
}

bool Take(const Kind& kind, const std::wstring& name) {
    bool isDone = kind.take(name);
    for (int tenths = 0; !isDone && tenths < 10 * kind.seconds; ++tenths) {
        Sleep(100);
        isDone = kind.take(name);
    }
    return isDone;
}

} // namespace

std::vector<demo::Made> InOrder(std::vector<demo::Made> made) {
    std::vector<demo::Made> ordered;
    for (const demo::Made& each : made) {
        const demo::Made done{kDone, kit::Wide(each.kind)};
        if (PlaceOf(each) < std::ssize(kKinds) && std::ranges::find(made, done) == made.end() &&
            std::ranges::find(ordered, each) == ordered.end()) {
            ordered.push_back(each);
        }
    }
    std::ranges::stable_sort(ordered, {}, PlaceOf);
    return ordered;
}

std::vector<std::string> TakeBack(const std::vector<demo::Made>& made) {
    std::vector<std::string> left;
    for (const demo::Made& each : InOrder(made)) {
        std::string why;
        try {
            if (Take(kKinds[PlaceOf(each)], each.name)) {
                continue;
            }
        } catch (const std::exception& failure) {
            why = std::string(", ") + failure.what();
        }
        left.push_back(each.kind + " " + kit::Narrow(each.name) + why);
    }
    return left;
}

} // namespace acceptance
