// What every command does about every fault at every call that it makes.
#include <windows.h>
#include <wtypes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <exception>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/OString.h"
#include "demo/Printers.h"
#include "platform/OperatingSystem.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/FaultTable.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

/// What comes after the step that has the fault.
enum class Then {
    AllTheRest,  ///< as if nothing had been
    NextPrinter, ///< nothing more for this one
    Nothing,     ///< nothing more is asked of the server
    OutOfProgram ///< the exception leaves the program
};

/// What is printed and returned when the first of two printers, or the server, has a fault. "%1" and "%2" are
/// the printers' names, "%o" is the system's, "%w" the line's last word; "%e" stands for the lines about an
/// automation failure.
struct Row {
    Effect fault;
    const char* at = ""; ///< at whose objects, or at which operation; empty: wherever it can be
    Lines printed{};
    Then then = Then::AllTheRest;
    int status = 0;
};

/// Command lines that do the same; "%f" is a file that is there.
struct CommandLine {
    std::vector<std::string> lines;
    Lines printed{}; ///< without a fault; the status is 0
    std::vector<Row> faults{};
};

/// The scripted driver supports every action but this one's.
const char* const kUnsupportedAction = "action Cut";
/// Refused for more than one printer.
const char* const kForOnePrinter = "settings export out.vqs";

const char* const kUnspecified = "Unspecified error.";
const char* const kEnd = "Finished processing command.";
const char* const kAction = "Executing 'Action' command.";
const char* const kExport = "Executing 'Export' command.";
const char* const kGet = "Executing 'Get' command.";
const char* const kImport = "Executing 'Import' command.";
const char* const kQueue = "Executing 'Queue' command.";
const char* const kSend = "Executing 'Send' command.";
const char* const kSet = "Executing 'Set' command.";
const char* const kSettings = "Executing 'Settings' command.";
const char* const kServer = "DAL: Version [VersionDetail]";
const char* const kNoVersion = "DAL: Unknown [VersionDetail]";
const char* const kNoDetail = "DAL: Version [Unknown]";
const char* const kDriver1 = "%1: DriverVersion of %1 (DriverVersionDetail of %1)";
const char* const kDriver2 = "%2: DriverVersion of %2 (DriverVersionDetail of %2)";

using enum Effect;
using enum Then;

const CommandLine kCommandLines[] = {
    {.lines = {"action Test"},
     .printed = {kAction, "%1:", "Action Completed.", "%2:", "Action Completed.", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kAction, "%1:", "", "%2:", "Action Completed.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage,
                 .printed = {kAction, "%1:", kUnspecified, kEnd},
                 .then = Nothing,
                 .status = 2}}},
    {.lines = {kUnsupportedAction},
     .printed = {kAction, "%1:", "Action 'Cut' is not supported.", "%2:", "Action 'Cut' is not supported.",
                 kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kAction, "%1:", "", "%2:", "Action 'Cut' is not supported.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage,
                 .printed = {kAction, "%1:", kUnspecified, kEnd},
                 .then = Nothing,
                 .status = 2}}},
    {.lines = {"action -n Test"},
     .printed = {kAction, "%1:", "Action 'Test' is supported.", "%2:", "Action 'Test' is supported.", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kAction, "%1:", "", "%2:", "Action 'Test' is supported.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage,
                 .printed = {kAction, "%1:", kUnspecified, kEnd},
                 .then = Nothing,
                 .status = 2}}},
    {.lines = {"settings import %f"},
     .printed = {kImport, "Settings imported for '%1'.", "Settings imported for '%2'.", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kImport, kUnsupported, "Settings imported for '%2'.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage, .printed = {kImport, kEnd}, .then = Nothing, .status = 2}}},
    {.lines = {"settings reset"},
     .printed = {kSettings, "Settings reset for '%1'.", "Settings reset for '%2'.", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kSettings, kUnsupported, "Settings reset for '%2'.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage, .printed = {kSettings, kEnd}, .then = Nothing, .status = 2}}},
    {.lines = {kForOnePrinter},
     .printed = {kExport, "Settings exported for '%1'.", kEnd},
     .faults = {{.fault = Refusal, .printed = {kExport, kUnsupported}, .then = Nothing, .status = 2},
                {.fault = Breakage, .then = OutOfProgram}}},
    {.lines = {"get PortName", "get ModelName", "get Comment", "get Location", "get ShareName", "get Status"},
     .printed = {kGet, "%1: %w of %1", "%2: %w of %2", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kGet, kUnsupported, "%2: %w of %2", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage, .printed = {kGet, kUnspecified, kEnd}, .then = Nothing, .status = 2},
                {.fault = NoText, .printed = {kGet, "%1: ", "%2: %w of %2", kEnd}}}},
    {.lines = {"set comment x", "set location x", "set sharename x"},
     .printed = {kSet, kEnd},
     .faults = {{.fault = Refusal, .printed = {kSet, kUnsupported, kEnd}, .then = NextPrinter},
                {.fault = Breakage, .printed = {kSet, kUnspecified, kEnd}, .then = Nothing, .status = 2}}},
    {.lines = {"queue pause", "queue resume", "queue purge"},
     .printed = {kQueue, kEnd},
     .faults = {{.fault = Refusal, .printed = {kQueue, kUnsupported, kEnd}, .then = NextPrinter},
                {.fault = Breakage, .printed = {kQueue, kUnspecified, kEnd}, .then = Nothing, .status = 2}}},
    {.lines = {"send %f"},
     .printed = {kSend, "File sent to '%1'.", "File sent to '%2'.", kEnd},
     .faults = {{.fault = Refusal,
                 .printed = {kSend, kUnsupported, "File sent to '%2'.", kEnd},
                 .then = NextPrinter},
                {.fault = Breakage, .printed = {kSend, kEnd}, .then = Nothing, .status = 2}}},
    {.lines = {"version"},
     .printed = {kServer, "OS: %o", kDriver1, kDriver2},
     .faults = {{.fault = Refusal, .at = "VersionInformation", .printed = {"%e"}, .then = Nothing},
                {.fault = Breakage, .at = "VersionInformation", .then = OutOfProgram},
                {.fault = NoText,
                 .at = "IVersionInformation.GetVersion",
                 .printed = {kNoVersion, "OS: %o", kDriver1, kDriver2}},
                {.fault = NoText,
                 .at = "IVersionInformation.GetVersionDetail",
                 .printed = {kNoDetail, "OS: %o", kDriver1, kDriver2}},
                {.fault = Refusal,
                 .at = "DriverAutomation",
                 .printed = {kServer, "OS: %o"},
                 .then = Nothing,
                 .status = 2},
                {.fault = Breakage,
                 .at = "DriverAutomation",
                 .printed = {kServer, "OS: %o"},
                 .then = Nothing,
                 .status = 2},
                {.fault = NoText,
                 .at = "IDriverAutomation.GetDriverVersion",
                 .printed = {kServer, "OS: %o", "%1: Unknown", kDriver2}},
                {.fault = NoText,
                 .at = "IDriverAutomation.GetDriverVersionDetail",
                 .printed = {kServer, "OS: %o", "%1: DriverVersion of %1", kDriver2}}}},
    {.lines = {"version interface"},
     .printed = {kServer},
     .faults = {{.fault = Refusal, .printed = {"%e"}, .then = Nothing},
                {.fault = Breakage, .then = OutOfProgram},
                {.fault = NoText, .at = "IVersionInformation.GetVersion", .printed = {kNoVersion}},
                {.fault = NoText, .at = "IVersionInformation.GetVersionDetail", .printed = {kNoDetail}}}},
    {.lines = {"version os"}, .printed = {"OS: %o"}},
    {.lines = {"version driver"},
     .printed = {kDriver1, kDriver2},
     .faults = {{.fault = Refusal, .then = Nothing, .status = 2},
                {.fault = Breakage, .then = Nothing, .status = 2},
                {.fault = NoText,
                 .at = "IDriverAutomation.GetDriverVersion",
                 .printed = {"%1: Unknown", kDriver2}},
                {.fault = NoText,
                 .at = "IDriverAutomation.GetDriverVersionDetail",
                 .printed = {"%1: DriverVersion of %1", kDriver2}}}},
};

class FaultTable : public testing::TestWithParam<std::string> {
  protected:
    /// One run: output and status, or the exception that left the program, and what was asked of the server.
    struct Outcome {
        std::string output{};
        int status = 0;
        bool escaped = false;
        Lines calls{};
        Lines journal{};
    };

    FaultTable()
        : m_release(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", L"ReleaseId") {}

    /// Runs the command line on a server of its own that `arm` has prepared.
    Outcome Run(const std::string& line, const std::function<void(FakeServer&)>& arm = {}) {
        FakeServer server;
        if (line == kUnsupportedAction) {
            server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE);
        }
        if (arm) {
            arm(server);
        }
        Words words{L"/p", m_first.Name()};
        if (line != kForOnePrinter) {
            words.insert(words.end(), {L"/p", m_second.Name()});
        }
        std::istringstream rest(line);
        for (std::string word; rest >> word;) {
            words.push_back(word == "%f" ? m_file.Path() : std::wstring(word.begin(), word.end()));
        }
        Outcome outcome;
        try {
            const RunResult run = RunAfresh(words);
            outcome.output = run.output;
            outcome.status = run.status;
        } catch (const std::exception&) {
            outcome.escaped = true;
        }
        outcome.calls = WithoutNumbers(server.Calls());
        outcome.journal = server.Journal();
        EXPECT_EQ(server.Faults(), Lines{});
        return outcome;
    }

    /// Sees that a run did what the row says, and asked for the calls.
    void Compare(const Outcome& outcome, const Row& row, const Lines& failure, const Lines& calls) const {
        EXPECT_EQ(outcome.calls, calls);
        EXPECT_EQ(outcome.escaped, row.then == OutOfProgram);
        if (!outcome.escaped) {
            EXPECT_EQ(outcome.output, Filled(row.printed, failure));
            EXPECT_EQ(outcome.status, row.status);
        }
    }

    const Balance m_balance; // first made and last gone
    const demo::Printer m_first;
    const demo::Printer m_second;
    const TemporaryFile m_file;
    const RegistryPreset m_release; // absent, so that the system has one line

  private:
    std::string Filled(const Lines& printed, const Lines& failure) const {
        const std::string lastWord = GetParam().substr(GetParam().rfind(' ') + 1);
        Lines lines;
        for (const std::string& line : printed) {
            if (line == "%e") {
                lines.insert(lines.end(), failure.begin(), failure.end());
                continue;
            }
            lines.push_back(OString(line.c_str())
                                .ReplaceAll("%1", m_first.Name().c_str())
                                .ReplaceAll("%2", m_second.Name().c_str())
                                .ReplaceAll("%o", kemba::TheOperatingSystem().name)
                                .ReplaceAll("%w", lastWord.c_str())
                                .Narrow());
        }
        return Output(lines);
    }
};

const CommandLine& FindCommandLine(const std::string& line) {
    return *std::ranges::find_if(kCommandLines, [&](const CommandLine& candidate) {
        return std::ranges::find(candidate.lines, line) != candidate.lines.end();
    });
}

/// The row about such a fault, or null.
const Row* FindRow(const std::vector<Row>& rows, Effect fault, const Step& step) {
    for (const Row& row : rows) {
        const std::string at = row.at;
        if (row.fault == fault && (at.empty() || at == step.className || at == step.Operation())) {
            return &row;
        }
    }
    return nullptr;
}

/// The calls that are made when the step of this index has a fault.
Lines CallsWith(const std::vector<Step>& steps, std::size_t fault, Then then) {
    Lines calls;
    for (std::size_t index = 0; index < steps.size(); ++index) {
        const bool made =
            index <= fault || then == AllTheRest || (then == NextPrinter && !steps[index].IsOfTheFirst());
        if (made && steps[index].isCall) {
            calls.push_back(steps[index].shown);
        }
    }
    return calls;
}

TEST_P(FaultTable, SaysWhatIsPrintedAskedAndReturned) {
    const CommandLine& table = FindCommandLine(GetParam());
    const Outcome clean = Run(GetParam());
    const std::vector<Step> steps = StepsOf(clean.journal);
    Compare(clean, {.fault = None, .printed = table.printed}, {}, CallsWith(steps, 0, AllTheRest));

    std::set<const Row*> met;
    for (std::size_t index = 0; index < steps.size(); ++index) {
        const Step& step = steps[index];
        if (!step.IsOfTheFirst()) {
            continue;
        }
        for (const Fault& fault : FaultsAt(step)) {
            SCOPED_TRACE(step.shown + ", call " + std::to_string(step.call) + ": " + fault.title);
            const Row* const row = FindRow(table.faults, fault.effect, step);
            ASSERT_TRUE(row) << "the table has no row for this";
            met.insert(row);
            Lines failure = ErrorLines(fault.status);
            failure.insert(failure.end(), fault.information.begin(), fault.information.end());
            Compare(Run(GetParam(), fault.arm), *row, failure, CallsWith(steps, index, row->then));
        }
    }
    EXPECT_EQ(met.size(), table.faults.size()) << "a row of the table is never met";
}

std::vector<std::string> AllLines() {
    std::vector<std::string> all;
    for (const auto& [lines, printed, faults] : kCommandLines) {
        all.insert(all.end(), lines.begin(), lines.end());
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Commands, FaultTable, testing::ValuesIn(AllLines()), [](const auto& line) {
    std::string name = line.param;
    std::ranges::replace_if(name, [](unsigned char letter) { return !std::isalnum(letter); }, '_');
    return name;
});

using FaultTableRows = FaultTable;

TEST_F(FaultTableRows, MeetEveryOperationOfTheContract) {
    std::set<std::string> met;
    for (const std::string& line : AllLines()) {
        for (const Step& step : StepsOf(Run(line).journal)) {
            if (step.isCall) {
                met.insert(step.Operation());
            }
        }
    }
    for (const Operation& operation : AllOperations()) {
        EXPECT_TRUE(met.contains(std::string(operation.name)))
            << operation.name << ": no command line of this table calls it";
    }
}

} // namespace
