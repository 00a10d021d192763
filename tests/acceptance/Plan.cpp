// The table of the test programs.
#include "tests/acceptance/Plan.h"

#include <span>
#include <string>

namespace acceptance {
namespace {

constexpr Part kParts[] = {
    {.program = L"registration_tests.exe",
     .tests = "*",
     .withoutAdministrator = "",
     .onWine = "Registration.ForTheUser*",
     .isUnregistered = true},
    {.program = L"program_end_tests.exe", .tests = "*", .withoutAdministrator = "*", .onWine = "*"},
    {.program = L"program_tests.exe",
     .tests = "*",
     .withoutAdministrator = "KembaProgram.*:Programs/OutputThatFails.FailsForEverybody/*:"
                             "Programs/OutputThatFails.LeavesTheStatusAsItIs/*",
     .onWine = "KembaProgram.*:RealPair.*:WholeLife.*:PrinterQueue.*"},
    {.program = L"server_program_tests.exe",
     .tests = "*",
     .withoutAdministrator =
         "ServerProgram.StatusesOfFailures*:ServerProgram.EveryClass*:ServerProgram.Words*:"
         "Scripts/ScriptHost.IsToldTheVersion/*:"
         "ServerLifetime.TheProcessStarts*:ServerLifetime.AProgramThatFinds*",
     .onWine = "Script*.*:ServerProgram.*:ServerLifetime.ShowsNoDialog*"},
    {.program = L"planted_library_tests.exe",
     .tests = "*",
     .withoutAdministrator = "PlantedLibrary.IsLoadedBy*",
     .onWine = ""},
    {.program = L"kemba_registry_tests.exe", .tests = "*", .withoutAdministrator = "", .onWine = ""},
    {.program = L"hostile_server_tests.exe", .tests = "*", .withoutAdministrator = "", .onWine = ""},
    {.program = L"code_page_932_tests.exe",
     .tests = "*",
     .withoutAdministrator = "",
     .onWine = "",
     .codePage = 932},
    {.program = L"code_page_65001_tests.exe",
     .tests = "*",
     .withoutAdministrator = "",
     .onWine = "",
     .codePage = 65001},
    {.program = L"load_tests.exe",
     .tests = "-ServerLast.*",
     .withoutAdministrator = "SoakModel.*",
     .onWine = "SixteenAtOnce.*"},
    // It ends the server.
    {.program = L"load_tests.exe", .tests = "ServerLast.*", .withoutAdministrator = "", .onWine = ""},
};

} // namespace

std::span<const Part> Parts() {
    return kParts;
}

Selection SelectTests(const Part& part, const Machine& machine) {
    if (machine.isWine) {
        return {part.onWine, ""};
    }
    if (part.codePage != 0 && part.codePage != machine.codePage) {
        return {"", "the system's code page is " + std::to_string(machine.codePage) + ", not " +
                        std::to_string(part.codePage)};
    }
    if (!machine.isAdministrator) {
        return {part.withoutAdministrator, "needs an administrator"};
    }
    return {part.tests, ""};
}

} // namespace acceptance
