// acceptance: tries the built programs on this machine, takes everything back, and writes one report.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "demo/Made.h"
#include "demo/Printers.h"
#include "tests/acceptance/Checks.h"
#include "tests/acceptance/Facts.h"
#include "tests/acceptance/Plan.h"
#include "tests/acceptance/Registered.h"
#include "tests/acceptance/TakingBack.h"
#include "tests/acceptance/TestOutput.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/programs/ServerProgram.h"

using namespace acceptance;
using namespace std::chrono_literals;

namespace {

constexpr wchar_t kReportFile[] = L"acceptance-report.txt";
constexpr wchar_t kBrandle[] = L"SOFTWARE\\Brandle"; // where the programs keep what they remember

/// Somebody wants the run to end. Its programs end by themselves.
std::atomic<bool> isToEnd = false;

BOOL WINAPI OnConsoleEvent(DWORD event) {
    isToEnd = true;
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE); // the process ends with this call, or after some seconds
    }
    return TRUE;
}

/// The report's file, and what is shown of it meanwhile.
class Report {
  public:
    /// In the folder, or that for temporary files if nobody may write to the first.
    explicit Report(const std::filesystem::path& folder) {
        for (const auto& place : {folder, std::filesystem::temp_directory_path()}) {
            m_path = place / kReportFile;
            m_file = kit::OwnFile(CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
            if (m_file) {
                break;
            }
        }
    }

    void Write(const std::string& lines) {
        std::string text;
        for (const char character : lines + "\n") {
            text += character == '\n' ? "\r\n" : std::string(1, character);
        }
        DWORD written = 0;
        m_isWhole =
            m_isWhole && m_file &&
            WriteFile(m_file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
            written == text.size();
    }
    void WriteAndShow(const std::string& lines) {
        Write(lines);
        Show(lines);
    }
    static void Show(const std::string& lines) {
        std::printf("%s\n", lines.c_str());
        std::fflush(stdout);
    }
    void Add(const Check& check) {
        Write(ReportOf(check));
        if (check.outcome == Outcome::Failed) {
            Show(ReportOf(check));
        }
    }
    bool IsWhole() const { return m_isWhole; }
    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_path;
    kit::UniqueHandle m_file;
    bool m_isWhole = true;
};

/// The checks so far; each goes to the report at once.
class Results {
  public:
    Results(Report& report, const Machine& machine) : m_report(report), m_machine(machine) {}

    void Add(const Check& check) {
        m_checks.push_back(m_machine.isWine ? HoldToGaps(check, WineGaps()) : check);
        m_report.Add(m_checks.back());
    }
    /// One of the run's own.
    void AddThat(const char* name, bool holds, const std::string& detail) {
        Add({std::string("Acceptance.") + name, holds ? Outcome::Passed : Outcome::Failed,
             holds ? "" : detail});
    }
    /// What is expected of a whole run on Wine.
    void AddUntried() {
        for (const Check& check : UntriedGaps(m_checks, WineGaps())) {
            Add(check);
        }
    }
    const std::vector<Check>& All() const { return m_checks; }

  private:
    Report& m_report;
    const Machine m_machine;
    std::vector<Check> m_checks;
};

/// Has the programs of this run end with it, however it ends. Not on Wine, whose own server crashes when the
/// last process that holds such a job is in it and ends.
kit::UniqueHandle BindProgramsToThisOne(const Machine& machine) {
    if (machine.isWine) {
        return {};
    }
    kit::UniqueHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    AssignProcessToJobObject(job.get(), GetCurrentProcess());
    return job;
}

/// Whether the last client's server has gone by itself, or goes within a minute.
bool IsServerGone() {
    for (int tenths = 0; !kit::RunningServers().empty() && tenths < 600; ++tenths) {
        Sleep(100);
    }
    return kit::RunningServers().empty();
}

/// Runs tests, which are named, of one program; those after one that ended its process in another process.
void RunTests(const wchar_t* program, std::vector<std::string> names, Results& results) {
    while (!names.empty() && !isToEnd) {
        std::string filter = "--gtest_filter=";
        for (const std::string& name : names) {
            filter += name + ":";
        }
        kit::ProcessOptions options;
        options.timeout = 15min;
        const kit::ProcessResult run = kit::RunProgram(program, {kit::Wide(filter)}, options);
        const std::string end = run.timedOut ? "it was still running after 15 minutes, and was ended"
                                             : "its process ended with status " + std::to_string(run.status);
        const std::string next = names.front();
        for (const Check& check : ReadTestOutput(run.output, end)) {
            results.Add(check);
            std::erase(names, check.name);
        }
        if (!names.empty() && names.front() == next) {
            results.Add({next, Outcome::Failed, "it was not run; " + end + "\n" + run.errors});
            return;
        }
    }
}

std::vector<std::string> ListTests(const Part& part, const char* filter) {
    if (*filter == '\0') {
        return {};
    }
    const std::wstring words = kit::Wide("--gtest_filter=" + std::string(filter));
    return ReadTestList(kit::RunProgram(part.program, {L"--gtest_list_tests", words}).output);
}

/// A suite at a time, each in processes of its own.
void RunPart(const Part& part, const Machine& machine, Results& results) {
    const Selection selection = SelectTests(part, machine);
    std::vector<std::string> names = ListTests(part, selection.run.c_str());
    if (!selection.reason.empty()) {
        for (const std::string& name : ListTests(part, part.tests)) {
            if (std::ranges::find(names, name) == names.end()) {
                results.Add({name, Outcome::NotOffered, selection.reason});
            }
        }
    }
    if (!selection.run.empty() && names.empty()) {
        results.Add({kit::Narrow(part.program), Outcome::Failed, "the program has no such tests"});
    }
    const auto suiteOf = [](const std::string& name) { return name.substr(0, name.find('.')); };
    while (!names.empty() && !isToEnd) {
        const std::string suite = suiteOf(names.front());
        const auto others = std::ranges::stable_partition(
            names, [&](const std::string& name) { return suiteOf(name) == suite; });
        Report::Show("... " + suite);
        RunTests(part.program, {names.begin(), others.begin()}, results);
        names.erase(names.begin(), others.begin());
    }
}

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

void RunServer(const char* check, const std::vector<std::wstring>& words, Results& results) {
    const kit::ProcessResult run = kit::RunProgram(L"kemba-dal.exe", words);
    results.AddThat(check, run.status == 0, "status " + std::to_string(run.status) + "\n" + run.errors);
}

/// Where a run records what it makes: always the same place, for the next run to find.
std::wstring RecordPath() {
    const std::wstring folder = kit::EnvironmentVariable(L"LOCALAPPDATA");
    return (folder.empty() ? std::filesystem::temp_directory_path() : std::filesystem::path(folder)) /
           L"kemba-acceptance.txt";
}

/// Takes back what the record says; the record goes when nothing is left.
std::vector<std::string> TakeBackRecorded(const std::wstring& record) {
    std::vector<std::string> left = TakeBack(demo::ReadMade(kit::ReadBytes(record)));
    if (left.empty()) {
        DeleteFileW(record.c_str());
    }
    return left;
}

void RunAll(const Machine& machine, Results& results) {
    const auto runParts = [&](bool isUnregistered) {
        for (const Part& part : Parts()) {
            if (part.isUnregistered != isUnregistered || isToEnd) {
                continue;
            }
            try {
                RunPart(part, machine, results);
            } catch (const std::exception& failure) { // it is not there, or something keeps it from starting
                results.Add({kit::Narrow(part.program), Outcome::Failed, failure.what()});
            }
        }
    };
    if (machine.isAdministrator) {
        demo::RememberMade(kMadeTestKeys, L"");
    }
    runParts(true);
    if (machine.isAdministrator && TakeBack({{kMadeTestKeys, L""}}).empty()) {
        demo::RememberMade(kDone, kit::Wide(kMadeTestKeys));
    }
    std::vector<std::wstring> words{L"/regserver"};
    if (!machine.isAdministrator) {
        words.emplace_back(L"/user");
    }
    demo::RememberMade(kMadeRegistration, machine.isAdministrator ? L"/unregserver" : L"/unregserver /user");
    RunServer("TheServerIsRegistered", words, results);
    runParts(false);
    results.AddThat("TheServerEndsAfterItsLastClient", IsServerGone(), "it still runs after a minute");
    words.front() = L"/unregserver";
    RunServer("TheRegistrationIsTakenBack", words, results);
    if (machine.isWine && !isToEnd) {
        results.AddUntried();
    }
}

/// Prepares what the run and its programs stand on; all of it is recorded.
void Prepare(const Machine& machine, const std::wstring& record) {
    SetEnvironmentVariableW(demo::kRecordVariable, record.c_str());
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / (kFolderBegin + std::to_wstring(GetCurrentProcessId()));
    demo::RememberMade(kMadeFolder, folder.wstring());
    std::filesystem::create_directories(folder);
    for (const wchar_t* const name : {L"TEMP", L"TMP"}) {
        SetEnvironmentVariableW(name, folder.c_str());
    }
    if (const auto printer = demo::GetDefaultPrinterName()) {
        demo::RememberMade(kDefaultPrinter, *printer);
    }
    if (machine.isAdministrator && !kit::OpenKey(HKEY_LOCAL_MACHINE, kBrandle, KEY_READ)) {
        demo::RememberMade(kMadeMask, L"");
    }
}

int Run() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const kit::UniqueHandle alone(CreateMutexW(nullptr, TRUE, L"kemba acceptance"));
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        Report::Show("Another run is at work.");
        return 2;
    }
    // The tests look for their files below the present folder, and nobody is there to answer a message box.
    std::filesystem::current_path(folder);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);

    Report report(folder);
    const Machine machine = DescribeMachine();
    const kit::UniqueHandle job = BindProgramsToThisOne(machine);
    report.WriteAndShow(Lines(DescribeRun(machine, folder.wstring())) + "\n");
    const std::wstring record = RecordPath();
    if (std::filesystem::exists(record)) {
        const auto left = TakeBackRecorded(record);
        report.WriteAndShow(left.empty() ? "An earlier run was cut short: what it left was taken back.\n"
                                         : "An earlier run was cut short, and left:\n" + Lines(left) + "\n");
    }
    if (const auto servers = RegisteredServers(); !servers.empty()) {
        report.WriteAndShow("There is a server on this machine, and this run must not take its place:\n" +
                            Lines(servers) + "\n\nREFUSED: nothing was changed, and nothing was checked");
        return 2;
    }

    const std::vector<std::wstring> printers = demo::PrinterNames();
    Results results(report, machine);
    try {
        Prepare(machine, record);
        RunAll(machine, results);
    } catch (const std::exception& failure) {
        results.AddThat("RunsToItsEnd", false, failure.what());
    }
    if (isToEnd) {
        results.AddThat("RunsToItsEnd", false, "somebody ended the run");
    }
    Report::Show("... taking everything back");
    std::vector<std::string> left = TakeBackRecorded(record);
    const std::vector<std::string> servers = RegisteredServers();
    left.insert(left.end(), servers.begin(), servers.end());
    if (demo::PrinterNames() != printers) {
        left.emplace_back("the list of printers is another than before");
    }
    results.AddThat("TheMachineIsAsItWas", left.empty(), Lines(left));
    const Verdict verdict = Judge(results.All());
    report.WriteAndShow("\n" + verdict.line);
    if (!report.IsWhole()) {
        Report::Show("The report could not be written.");
        return 1;
    }
    Report::Show("Report: " + kit::Narrow(report.Path().wstring()));
    return verdict.status;
}

} // namespace

int main() {
    try {
        return Run();
    } catch (const std::exception& failure) {
        Report::Show(std::string("acceptance: ") + failure.what());
        return 1;
    }
}
