// What every command does about every fault at every call that it makes.
#include <algorithm>
#include <optional>
#include <set>

#include "platform/OperatingSystem.h"
#include "tests/kit/Operations.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/whole_run/FaultTable.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

enum class Loop { GoesOn, Stops };
enum class Closing { Always, WhenServed };

/// A line of the output when the operation gives no text, and that line otherwise.
struct Blank {
    const char* operation;
    std::string line;
    std::string otherwise;
};

/// A command line and what it prints; "%p" stands for the printer's name, "%f" for a file that is there.
struct Row {
    const char* title;
    Words words;
    Lines opening;
    Lines served;      ///< for a printer without a fault
    Lines refused;     ///< for a printer whose server refuses
    Loop afterRefusal; ///< a refusal that stops the loop fails the command
    std::optional<Lines>
        broken; ///< for a printer whose server throws; none: the exception leaves the program
    Lines closing;
    Closing when = Closing::Always;
    std::vector<Blank> blanks{};
    int printers = 2;
    bool actionsUnsupported = false;
};

const std::string kUnsupported = "The command is unsupported on this printer.";
const std::string kUnspecified = "Unspecified error.";
const Lines kEnd{"Finished processing command."};
const std::string kServerLine = "DAL: Version [VersionDetail]";
const std::string kDriverLine = "%p: DriverVersion of %p (DriverVersionDetail of %p)";

const std::vector<Blank> kServerBlanks = {
    {"IVersionInformation.GetVersion", "DAL: Unknown [VersionDetail]", kServerLine},
    {"IVersionInformation.GetVersionDetail", "DAL: Version [Unknown]", kServerLine}};
const std::vector<Blank> kDriverBlanks = {
    {"IDriverAutomation.GetDriverVersion", "%p: Unknown", kDriverLine},
    {"IDriverAutomation.GetDriverVersionDetail", "%p: DriverVersion of %p", kDriverLine}};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.title;
}

Row ActionRow(const char* title, Words words, const std::string& message, bool unsupported) {
    return {title,
            std::move(words),
            {"Executing 'Action' command."},
            {"%p:", message},
            {"%p:", ""},
            Loop::GoesOn,
            Lines{"%p:", kUnspecified},
            kEnd,
            Closing::Always,
            {},
            2,
            unsupported};
}

Row GetRow(const char* title, const wchar_t* field, const char* operation, const std::string& value) {
    return {title,
            {L"get", field},
            {"Executing 'Get' command."},
            {"%p: " + value + " of %p"},
            {kUnsupported},
            Loop::GoesOn,
            Lines{kUnspecified},
            kEnd,
            Closing::Always,
            {{operation, "%p: ", "%p: " + value + " of %p"}}};
}

Row SilentRow(const char* title, Words words, const std::string& opening) {
    return {title, std::move(words), {opening}, {}, {kUnsupported}, Loop::GoesOn, Lines{kUnspecified}, kEnd};
}

/// Commands that leave other failures to the loop, which says nothing of them.
Row PlainRow(const char* title, Words words, const std::string& opening, const std::string& served) {
    return {title, std::move(words), {opening}, {served}, {kUnsupported}, Loop::GoesOn, Lines{}, kEnd};
}

std::vector<Blank> Both(std::vector<Blank> left, const std::vector<Blank>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::vector<Row> Rows() {
    return {
        ActionRow("ActionTest", {L"action", L"Test"}, "Action Completed.", false),
        ActionRow("ActionTestUnsupported", {L"action", L"Test"}, "Action 'Test' is not supported.", true),
        ActionRow("ActionQuestion", {L"action", L"-n", L"Test"}, "Action 'Test' is supported.", false),
        PlainRow("SettingsImport", {L"settings", L"import", L"%f"}, "Executing 'Import' command.",
                 "Settings imported for '%p'."),
        {"SettingsExport",
         {L"settings", L"export", L"out.vqs"},
         {"Executing 'Export' command."},
         {"Settings exported for '%p'."},
         {kUnsupported},
         Loop::Stops,
         std::nullopt,
         kEnd,
         Closing::WhenServed,
         {},
         1},
        PlainRow("SettingsReset", {L"settings", L"reset"}, "Executing 'Settings' command.",
                 "Settings reset for '%p'."),
        SilentRow("SetComment", {L"set", L"comment", L"x"}, "Executing 'Set' command."),
        SilentRow("SetLocation", {L"set", L"location", L"x"}, "Executing 'Set' command."),
        SilentRow("SetShareName", {L"set", L"sharename", L"x"}, "Executing 'Set' command."),
        GetRow("GetPortName", L"portname", "IDriverAutomation.GetPortName", "PortName"),
        GetRow("GetModelName", L"modelname", "IDriverAutomation.GetModelName", "ModelName"),
        GetRow("GetComment", L"comment", "IDriverAutomation.GetComment", "Comment"),
        GetRow("GetLocation", L"location", "IDriverAutomation.GetLocation", "Location"),
        GetRow("GetShareName", L"sharename", "IDriverAutomation.GetShareName", "ShareName"),
        GetRow("GetStatus", L"status", "IPrinterInformation.GetStatus", "Status"),
        SilentRow("QueuePause", {L"queue", L"pause"}, "Executing 'Queue' command."),
        SilentRow("QueueResume", {L"queue", L"resume"}, "Executing 'Queue' command."),
        SilentRow("QueuePurge", {L"queue", L"purge"}, "Executing 'Queue' command."),
        PlainRow("Send", {L"send", L"%f"}, "Executing 'Send' command.", "File sent to '%p'."),
        {"Version",
         {L"version"},
         {kServerLine, "OS: %o"},
         {kDriverLine},
         {},
         Loop::Stops,
         Lines{},
         {},
         Closing::Always,
         Both(kServerBlanks, kDriverBlanks)},
        {"VersionInterface",
         {L"version", L"interface"},
         {kServerLine},
         {},
         {},
         Loop::Stops,
         Lines{},
         {},
         Closing::Always,
         kServerBlanks},
        {"VersionDriver",
         {L"version", L"driver"},
         {},
         {kDriverLine},
         {},
         Loop::Stops,
         Lines{},
         {},
         Closing::Always,
         kDriverBlanks},
    };
}

/// One run: output and status, or the exception that left the program, and what was asked of the server.
struct Outcome {
    std::string output;
    int status = 0;
    bool escaped = false;
    Lines calls;
    Lines journal;
};

class FaultTable : public testing::TestWithParam<Row> {
  protected:
    FaultTable()
        : m_release(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", L"ReleaseId") {}

    /// Runs the row's command line on a server of its own that `arm` has prepared.
    Outcome Run(const Row& row, const std::function<void(FakeServer&)>& arm = {}) {
        FakeServer server;
        if (row.actionsUnsupported) {
            server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE);
        }
        if (arm) {
            arm(server);
        }
        Words words;
        for (int printer = 0; printer < row.printers; ++printer) {
            words.insert(words.end(), {L"/p", m_printers[printer].Name()});
        }
        for (const std::wstring& word : row.words) {
            words.push_back(word == L"%f" ? m_file.Path() : word);
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

    /// The lines with the names filled in, as output.
    std::string Filled(const std::vector<std::pair<Lines, int>>& parts) const {
        Lines lines;
        for (const auto& [part, printer] : parts) {
            for (const std::string& line : part) {
                const OString name(m_printers[printer].Name().c_str());
                lines.push_back(OString(line.c_str())
                                    .ReplaceAll("%p", name)
                                    .ReplaceAll("%o", kemba::TheOperatingSystem().name)
                                    .Narrow());
            }
        }
        return Output(lines);
    }

    std::string CleanOutput(const Row& row) const {
        const Lines second = row.printers == 2 ? row.served : Lines{};
        return Filled({{row.opening, 0}, {row.served, 0}, {second, 1}, {row.closing, 0}});
    }

    const demo::Printer m_printers[2];
    const TemporaryFile m_file;
    const RegistryPreset m_release; // absent, so that the system has one line
};

/// The calls of the steps from one up to, but not including, another.
Lines CallsIn(const std::vector<Step>& steps, std::size_t from, std::size_t to) {
    Lines calls;
    for (std::size_t index = from; index < to; ++index) {
        if (steps[index].isCall) {
            calls.push_back(steps[index].shown);
        }
    }
    return calls;
}

std::size_t StartOfTheSecond(const std::vector<Step>& steps) {
    const auto start =
        std::ranges::find_if(steps, [](const Step& step) { return step.IsNew("DriverAutomation", 2); });
    return static_cast<std::size_t>(start - steps.begin());
}

TEST_P(FaultTable, DecidesWhatIsPrintedAskedAndReturned) {
    const Row& row = GetParam();
    const Outcome clean = Run(row);
    ASSERT_EQ(clean.output, CleanOutput(row));
    ASSERT_EQ(clean.status, 0);
    const std::vector<Step> steps = StepsOf(clean.journal);
    const std::size_t second = StartOfTheSecond(steps);
    ASSERT_FALSE(steps.empty());

    for (std::size_t index = 0; index < steps.size(); ++index) {
        const Step& step = steps[index];
        if (!step.IsOfTheFirst()) {
            continue;
        }
        const bool isOfServer = step.className == "VersionInformation";
        for (const Fault& fault : FaultsAt(step)) {
            SCOPED_TRACE(step.shown + ", call " + std::to_string(step.call) + ": " + fault.title);
            const Outcome outcome = Run(row, fault.arm);
            std::string expected;
            Lines calls = CallsIn(steps, 0, index + 1);
            int status = 0;
            bool escapes = false;
            if (fault.effect == Effect::NoText) {
                const std::string operation = "I" + step.className + "." + step.event;
                const auto blank = std::ranges::find(row.blanks, operation, &Blank::operation);
                ASSERT_NE(blank, row.blanks.end());
                Lines opening = row.opening;
                Lines served = row.served;
                std::ranges::replace(opening, blank->otherwise, blank->line);
                std::ranges::replace(served, blank->otherwise, blank->line);
                expected = Filled({{opening, 0}, {served, 0}, {row.served, 1}, {row.closing, 0}});
                calls = CallsIn(steps, 0, steps.size());
            } else if (isOfServer) {
                Lines lines = ErrorLines(fault.status);
                lines.insert(lines.end(), fault.information.begin(), fault.information.end());
                expected = Output(lines);
                escapes = fault.effect == Effect::Breakage;
            } else if (fault.effect == Effect::Refusal && row.afterRefusal == Loop::GoesOn) {
                expected = Filled({{row.opening, 0}, {row.refused, 0}, {row.served, 1}, {row.closing, 0}});
                const Lines more = CallsIn(steps, second, steps.size());
                calls.insert(calls.end(), more.begin(), more.end());
            } else {
                const bool refused = fault.effect == Effect::Refusal;
                escapes = !refused && !row.broken;
                expected = Filled({{row.opening, 0},
                                   {refused ? row.refused : row.broken.value_or(Lines{}), 0},
                                   {row.when == Closing::Always ? row.closing : Lines{}, 0}});
                status = 2;
            }
            EXPECT_EQ(outcome.escaped, escapes);
            EXPECT_EQ(outcome.calls, calls);
            if (!escapes) {
                EXPECT_EQ(outcome.output, expected);
                EXPECT_EQ(outcome.status, status);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, FaultTable, testing::ValuesIn(Rows()),
                         [](const auto& row) { return std::string(row.param.title); });

using FaultTableRows = FaultTable;

TEST_F(FaultTableRows, MeetEveryOperationOfTheContract) {
    std::set<std::string> met;
    for (const Row& row : Rows()) {
        for (const Step& step : StepsOf(Run(row).journal)) {
            if (step.isCall) {
                met.insert("I" + step.className + "." + step.event);
            }
        }
    }
    for (const Operation& operation : AllOperations()) {
        EXPECT_TRUE(met.contains(std::string(operation.name))) << operation.name;
    }
}

TEST_F(FaultTableRows, NeedNoneForTheSystemsVersion) {
    const Row row{"VersionOs", {L"version", L"os"}, {"OS: %o"}, {}, {}, Loop::Stops, Lines{}, {}};
    const Outcome outcome = Run(row);
    EXPECT_EQ(outcome.output, CleanOutput(row));
    EXPECT_EQ(StepsOf(outcome.journal).size(), 0U);
}

} // namespace
