// kemba.exe and a server that dies in the middle of an operation, takes its time, or never comes.
#include <windows.h>
#include <rpc.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "demo/Made.h"
#include "demo/Printers.h"
#include "demo/Wine.h"
#include "tests/kit/CommandLine.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/programs/OwnClasses.h"

using namespace kit;
using namespace std::chrono_literals;

namespace {

constexpr DWORD kPatience = 30'000; // milliseconds for a process to come or to go

/// A copy of kemba.exe that looks for classes of its own.
class OwnKemba {
  public:
    OwnKemba() : m_program(m_folder.File(L"kemba.exe")) {
        std::filesystem::copy_file(ProgramPath(L"kemba.exe"), m_program);
        classes.PutInto(m_program);
    }
    ProcessResult Run(const Words& words, std::chrono::milliseconds timeout = 60s) const {
        ProcessOptions options;
        options.timeout = timeout;
        ProcessResult result = RunProgram(m_program, words, options);
        EXPECT_FALSE(result.timedOut);
        EXPECT_EQ(result.errors, "");
        return result;
    }

    const OwnClasses classes;

  private:
    const TemporaryFolder m_folder;
    const std::wstring m_program;
};

/// What the hostile server is told: the operation, and what happens in it.
struct Hostility {
    std::string operation;
    std::wstring how;
};

/// The hostile server under these classes, which ends with its owner.
class HostileServer {
  public:
    HostileServer(const OwnClasses& classes, const Hostility& hostility)
        : m_events(L"kemba hostile " + TextOf(classes.automation)), m_ready(MakeEvent(L" ready")),
          m_over(MakeEvent(L" over")),
          m_line(L"\"" + ProgramPath(L"hostile-server.exe") + L"\" " +
                 MakeCommandLine({TextOf(classes.automation),
                                  std::wstring(hostility.operation.begin(), hostility.operation.end()),
                                  hostility.how})) {}
    HostileServer(const HostileServer&) = delete;
    HostileServer& operator=(const HostileServer&) = delete;
    ~HostileServer() { SetEvent(m_over.get()); }

    /// What starts it; Wine takes no more than 260 characters from the registry.
    const std::wstring& Line() const { return m_line; }
    /// Starts it, and waits until clients can come.
    void Start() {
        m_process = StartProgram(m_line);
        const HANDLE either[] = {m_ready.get(), m_process.get()};
        EXPECT_EQ(WaitForMultipleObjects(2, either, FALSE, kPatience), WAIT_OBJECT_0);
    }
    /// Whether somebody started it.
    bool WasStarted() const { return WaitForSingleObject(m_ready.get(), 0) == WAIT_OBJECT_0; }
    /// Whether it died as it was told to.
    bool Died() const {
        DWORD status = 0;
        return WaitForSingleObject(m_process.get(), kPatience) == WAIT_OBJECT_0 &&
               GetExitCodeProcess(m_process.get(), &status) && status == kDeath;
    }

  private:
    static constexpr DWORD kDeath = 9; // its exit status when it dies

    UniqueHandle MakeEvent(const wchar_t* suffix) const {
        return UniqueHandle(CreateEventW(nullptr, TRUE, FALSE, (m_events + suffix).c_str()));
    }

    const std::wstring m_events;
    const UniqueHandle m_ready;
    const UniqueHandle m_over;
    const std::wstring m_line;
    UniqueHandle m_process;
};

/// What stands in the registry for the classes of one server, as long as it lives.
class Registered {
  public:
    /// `kind` is LocalServer32 or InprocServer32.
    Registered(const OwnClasses& classes, const std::wstring& kind, const std::wstring& path)
        : m_keys{{HKEY_LOCAL_MACHINE, PathOf(classes.automation)},
                 {HKEY_LOCAL_MACHINE, PathOf(classes.actions)},
                 {HKEY_LOCAL_MACHINE, PathOf(classes.version)}} {
        for (const ScratchKey& key : m_keys) {
            key.Set(L"", RegistryData::OfText(path), kind);
        }
    }

  private:
    static std::wstring PathOf(const CLSID& id) {
        demo::RememberMade(demo::kMadeClass, TextOf(id));
        return demo::kOwnClassesKey + TextOf(id);
    }

    const ScratchKey m_keys[3];
};

/// A command line that reaches the operation, and what it prints when the server dies there: "%p" stands for
/// the printer's name, "%f" for a file that is there.
struct DeathRow {
    const char* operation;
    Words words;
    std::string output;
    DWORD status = 0;
};

std::vector<DeathRow> DeathRows() {
    const auto get = [](const char* operation, const wchar_t* field) {
        return DeathRow{operation, {L"get", field}, Framed("Get", {kUnsupported})};
    };
    const auto set = [](const char* operation, const wchar_t* field) {
        return DeathRow{operation, {L"set", field, L"x"}, Framed("Set", {kUnsupported})};
    };
    const auto queue = [](const char* operation, const wchar_t* word) {
        return DeathRow{operation, {L"queue", word}, Framed("Queue", {kUnsupported})};
    };
    const auto action = [](const char* operation, const Words& words) {
        return DeathRow{operation, words, Framed("Action", {"%p:", ""})};
    };
    const auto driver = [](const char* operation) {
        return DeathRow{operation, {L"version", L"driver"}, "", 2};
    };
    const auto server = [](const char* operation) {
        return DeathRow{
            operation, {L"version", L"interface"}, Output(ErrorLines(HRESULT_FROM_WIN32(RPC_S_CALL_FAILED)))};
    };
    return {
        get("DriverAutomation.CreateInstance", L"comment"),
        action("DriverActions.CreateInstance", {L"action", L"Test"}),
        server("VersionInformation.CreateInstance"),
        get("IDriverAutomation.PutPrinterName", L"comment"),
        {"IDriverAutomation.SendFile", {L"send", L"%f"}, Framed("Send", {kUnsupported})},
        action("IDriverAutomation.PerformAction", {L"action", L"Test"}),
        get("IDriverAutomation.GetShareName", L"sharename"),
        set("IDriverAutomation.PutShareName", L"sharename"),
        get("IDriverAutomation.GetPortName", L"portname"),
        get("IDriverAutomation.GetModelName", L"modelname"),
        get("IDriverAutomation.GetComment", L"comment"),
        set("IDriverAutomation.PutComment", L"comment"),
        get("IDriverAutomation.GetLocation", L"location"),
        set("IDriverAutomation.PutLocation", L"location"),
        driver("IDriverAutomation.GetDriverVersion"),
        driver("IDriverAutomation.GetDriverVersionDetail"),
        queue("IDriverAutomation.GetPrinterQueue", L"pause"),
        get("IDriverAutomation.GetPrinterInformation", L"status"),
        {"IDriverAutomation.GetSettings", {L"settings", L"reset"}, Framed("Settings", {kUnsupported})},
        {"IDriverSettings.ImportSettings", {L"settings", L"import", L"%f"}, Framed("Import", {kUnsupported})},
        {"IDriverSettings.ExportSettings",
         {L"settings", L"export", L"out.vqs"},
         Output({"Executing 'Export' command.", kUnsupported}),
         2},
        {"IDriverSettings.ResetSettings", {L"settings", L"reset"}, Framed("Settings", {kUnsupported})},
        action("IDriverActions.PutExecute", {L"action", L"Test"}),
        action("IDriverActions.GetSupported", {L"action", L"Test"}),
        action("IDriverActions.GetDisplaysInterface", {L"action", L"-n", L"Test"}),
        queue("IPrinterQueue.Pause", L"pause"),
        queue("IPrinterQueue.Resume", L"resume"),
        queue("IPrinterQueue.Purge", L"purge"),
        get("IPrinterInformation.GetStatus", L"status"),
        server("IVersionInformation.GetVersion"),
        server("IVersionInformation.GetVersionDetail"),
    };
}

void PrintTo(const DeathRow& row, std::ostream* out) {
    *out << row.operation;
}

class DeathOfTheServer : public testing::TestWithParam<DeathRow> {};

TEST_P(DeathOfTheServer, IsARefusal) {
    const DeathRow& row = GetParam();
    const demo::Printer printer;
    const TemporaryFile file;
    const OwnKemba kemba;
    HostileServer server(kemba.classes, {row.operation, L"die"});
    server.Start();
    Words words{L"/p", printer.Name()};
    for (const std::wstring& word : row.words) {
        words.push_back(word == L"%f" ? file.Path() : word);
    }
    const ProcessResult run = kemba.Run(words);
    EXPECT_EQ(run.output,
              OString(row.output.c_str()).ReplaceAll("%p", OString(printer.Name().c_str())).Narrow());
    EXPECT_EQ(run.status, row.status);
    EXPECT_TRUE(server.Died());
}

INSTANTIATE_TEST_SUITE_P(In, DeathOfTheServer, testing::ValuesIn(DeathRows()), [](const auto& row) {
    std::string name = row.param.operation;
    std::ranges::replace(name, '.', '_');
    return name;
});

TEST(DeathOfTheServer, IsTriedInEveryOperation) {
    const std::vector<DeathRow> rows = DeathRows();
    for (const Operation& operation : AllOperations()) {
        EXPECT_EQ(std::ranges::count(rows, operation.name, &DeathRow::operation), 1) << operation.name;
    }
}

class HostileServers : public testing::Test {
  protected:
    const demo::Printer printer;
    const OwnKemba kemba;
    ProcessResult GetComments() const {
        return kemba.Run({L"/p", printer.Name(), L"/p", printer.Name(), L"get", L"comment"});
    }
    const std::string kServed =
        Framed("Get", {Printed(printer.Name()) + ": Comment", Printed(printer.Name()) + ": Comment"});
    const std::string kRefused = Framed("Get", {kUnsupported, kUnsupported});
};

TEST_F(HostileServers, ThatAreNoneServe) {
    HostileServer server(kemba.classes, {"none", L"die"});
    server.Start();
    const ProcessResult run = GetComments();
    EXPECT_EQ(run.output, kServed);
    EXPECT_EQ(run.status, 0U);
}

TEST_F(HostileServers, ThatDieLeaveTheNextPrinterItsTurn) {
    HostileServer server(kemba.classes, {"IDriverAutomation.GetComment", L"die"});
    server.Start();
    const ProcessResult run = GetComments();
    EXPECT_EQ(run.output, kRefused);
    EXPECT_EQ(run.status, 0U);
    EXPECT_TRUE(server.Died());
}

/// Whether half a minute is waited for; the short tests wait two seconds.
bool IsSlowRun() {
    return !EnvironmentVariable(L"KEMBA_SLOW_TESTS").empty();
}

/// Without a printer, for which all other tests would wait as long.
class SlowServers : public testing::TestWithParam<const char*> {};

TEST_P(SlowServers, AreWaitedFor) {
    const DWORD milliseconds = IsSlowRun() ? 30'000 : 2'000;
    const OwnKemba kemba;
    HostileServer server(kemba.classes, {GetParam(), std::to_wstring(milliseconds)});
    server.Start();
    const ULONGLONG begin = GetTickCount64();
    const ProcessResult run = kemba.Run({L"version", L"interface"}, 90s);
    EXPECT_EQ(run.output, "DAL: Version [VersionDetail]\r\n");
    EXPECT_EQ(run.status, 0U);
    EXPECT_GE(GetTickCount64() - begin, milliseconds);
}

INSTANTIATE_TEST_SUITE_P(In, SlowServers,
                         testing::Values("VersionInformation.CreateInstance",
                                         "IVersionInformation.GetVersion"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::ranges::replace(name, '.', '_');
                             return name;
                         });

class RealActivation : public HostileServers {
  protected:
    /// With no server to be had: the same words as for any other refusal.
    void ExpectNone() const {
        const ProcessResult get = GetComments();
        EXPECT_EQ(get.output, kRefused);
        EXPECT_EQ(get.status, 0U);
        const ProcessResult version = kemba.Run({L"version", L"interface"});
        if (demo::IsWine()) { // has one word for all of these
            EXPECT_EQ(version.output, Output(ErrorLines(REGDB_E_CLASSNOTREG)));
        } else {
            EXPECT_EQ(version.output.find("*** COM Exception ***\r\n"), 0U) << version.output;
        }
        EXPECT_EQ(version.status, 0U);
        EXPECT_EQ(kemba.Run({L"/p", printer.Name(), L"version", L"driver"}).status, 2U);
    }
};

TEST_F(RealActivation, OfAClassThatIsNotRegisteredFails) {
    ExpectNone();
}

TEST_F(RealActivation, StartsARegisteredProgram) {
    const HostileServer server(kemba.classes, {"none", L"die"});
    const Registered registered(kemba.classes, L"LocalServer32", server.Line());
    EXPECT_EQ(GetComments().output, kServed);
    EXPECT_TRUE(server.WasStarted());
}

TEST_F(RealActivation, SurvivesARegisteredProgramThatDies) {
    const HostileServer server(kemba.classes, {"IDriverAutomation.GetComment", L"die"});
    const Registered registered(kemba.classes, L"LocalServer32", server.Line());
    const ProcessResult run = GetComments();
    EXPECT_EQ(run.output, kRefused);
    EXPECT_EQ(run.status, 0U);
    EXPECT_TRUE(server.WasStarted());
}

TEST_F(RealActivation, OfAMissingProgramFails) {
    for (const wchar_t* const kind : {L"LocalServer32", L"InprocServer32"}) {
        for (const wchar_t* const path : {L"C:\\Nowhere\\missing.exe", L"C:\\", L"", L"\"", L"a:b"}) {
            SCOPED_TRACE(Printed(kind) + Printed(path));
            const Registered registered(kemba.classes, kind, path);
            ExpectNone();
        }
    }
}

TEST_F(RealActivation, OfAProgramThatIsNoServerFails) {
    if (!demo::IsWine()) {
        GTEST_SKIP() << "Windows waits for two minutes each time";
    }
    const Registered registered(kemba.classes, L"LocalServer32", ProgramPath(L"planted-victim.exe"));
    ExpectNone();
}

TEST(SlowActivation, OfAProgramThatServesOthersFails) {
    if (!IsSlowRun()) {
        GTEST_SKIP() << "the runtime waits half a minute for the class";
    }
    const OwnKemba kemba;
    const HostileServer server(OwnClasses(), {"none", L"die"});
    const Registered registered(kemba.classes, L"LocalServer32", server.Line());
    const ProcessResult run = kemba.Run({L"version", L"interface"}, 90s);
    EXPECT_EQ(run.output, Output(ErrorLines(REGDB_E_CLASSNOTREG)));
    EXPECT_EQ(run.status, 0U);
    EXPECT_TRUE(server.WasStarted());
}

} // namespace
