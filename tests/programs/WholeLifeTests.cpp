// A printer's whole life through kemba.exe and kemba-dal.exe on the real spooler.
#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "demo/Made.h"
#include "demo/Printers.h"
#include "demo/Wine.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

std::string RandomBytes(std::size_t count) {
    std::mt19937 random(20'261'121); // NOLINT(bugprone-random-generator-seed): the same bytes every time
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

/// The printer's settings as another program sees them.
class PrinterSettings {
  public:
    explicit PrinterSettings(const std::wstring& name) : m_handle(OwnPrinter(name, PRINTER_ALL_ACCESS)) {}

    short Orientation() const { return Mode().dmOrientation; }
    void SetOrientation(short orientation) {
        DEVMODEW& mode = Mode();
        mode.dmOrientation = orientation;
        mode.dmFields |= DM_ORIENTATION;
        EXPECT_TRUE(SetPrinterW(m_handle.get(), 9, m_information.data(), 0));
    }
    DWORD Data(const wchar_t* value) {
        DWORD data = 0;
        DWORD needed = 0;
        EXPECT_EQ(GetPrinterDataW(m_handle.get(), const_cast<wchar_t*>(value), nullptr,
                                  reinterpret_cast<BYTE*>(&data), sizeof(data), &needed),
                  ERROR_SUCCESS);
        return data;
    }
    void SetData(const wchar_t* value, DWORD data) {
        EXPECT_EQ(SetPrinterDataW(m_handle.get(), const_cast<wchar_t*>(value), REG_DWORD,
                                  reinterpret_cast<BYTE*>(&data), sizeof(data)),
                  ERROR_SUCCESS);
    }

  private:
    /// The user's device mode, read afresh; it stays until the next reading.
    DEVMODEW& Mode() const {
        DWORD needed = 0;
        GetPrinterW(m_handle.get(), 9, nullptr, 0, &needed);
        m_information.resize(needed);
        EXPECT_TRUE(GetPrinterW(m_handle.get(), 9, m_information.data(), needed, &needed));
        return *reinterpret_cast<PRINTER_INFO_9W*>(m_information.data())->pDevMode;
    }

    const UniquePrinter m_handle;
    mutable std::vector<BYTE> m_information;
};

struct WholeLife : testing::Test {
    /// A run on the printer; its exit status must be 0.
    std::string On(Words words) {
        words.insert(words.end(), {L"/p", printer.Name()});
        const ProcessResult run = Kemba(words);
        EXPECT_EQ(run.status, 0U);
        EXPECT_EQ(run.errors, "");
        return run.output;
    }
    /// What `get` prints for the printer with such a value.
    std::string Shown(const std::wstring& value) const {
        return Framed("Get", {name + ": " + Printed(value)});
    }

    /// The printer as the spooler describes it, without what is referred to.
    PRINTER_INFO_2W Described() const {
        const UniquePrinter handle = OwnPrinter(printer.Name());
        DWORD needed = 0;
        GetPrinterW(handle.get(), 2, nullptr, 0, &needed);
        std::vector<BYTE> bytes(std::max<std::size_t>(needed, sizeof(PRINTER_INFO_2W)));
        EXPECT_TRUE(GetPrinterW(handle.get(), 2, bytes.data(), needed, &needed));
        return *reinterpret_cast<const PRINTER_INFO_2W*>(bytes.data());
    }

    const PrinterPort port;
    const demo::Printer printer{
        {.port = port.Name(), .comment = L"", .location = L"", .shareName = L"", .attributes = 0}};
    const std::string name = Printed(printer.Name());
};

TEST_F(WholeLife, FieldsAreWrittenAndReadBack) {
    const struct {
        const wchar_t* field;
        const wchar_t* value;
    } kValues[] = {
        {L"comment", L"Dock 4, 50% %1 \"left\""},
        {L"location", L"Hall 3/b\\c::d"},
        {L"sharename", L"dock4"},
        {L"comment", L""},
        {L"sharename", L""},
    };
    for (const auto& [field, value] : kValues) {
        EXPECT_EQ(On({L"set", field, value}), Framed("Set", {}));
        EXPECT_EQ(On({L"get", field}), Shown(value));
    }
    EXPECT_EQ(On({L"get", L"location"}), Shown(L"Hall 3/b\\c::d")) << "what was not set stays";
}

TEST_F(WholeLife, ALongCommentIsWrittenAndReadBack) {
    const std::wstring value(20'000, L'x');
    EXPECT_EQ(On({L"set", L"comment", value}), Framed("Set", {}));
    EXPECT_EQ(On({L"get", L"comment"}), Shown(value));
}

TEST_F(WholeLife, TwentyMegabytesArriveAtThePortsOtherEndByteForByte) {
    const std::string bytes = RandomBytes(20'000'000);
    const TemporaryFile file(bytes);
    EXPECT_EQ(On({L"send", file.Path()}), Framed("Send", {"File sent to '" + name + "'."}));
    const std::string received = port.Received(bytes.size());
    EXPECT_EQ(received.size(), bytes.size());
    EXPECT_TRUE(received == bytes);
}

TEST_F(WholeLife, SettingsAreExportedImportedAndReset) {
    const TemporaryFile file;
    EXPECT_EQ(On({L"settings", L"export", file.Path()}),
              Framed("Export", {"Settings exported for '" + name + "'."}));
    const std::string exported = file.Read();
    EXPECT_GT(exported.size(), 100U);

    PrinterSettings settings(printer.Name());
    settings.SetOrientation(DMORIENT_LANDSCAPE);
    settings.SetData(L"Darkness", 17);
    const TemporaryFile changed;
    On({L"settings", L"export", changed.Path()});
    EXPECT_NE(changed.Read(), exported);

    EXPECT_EQ(On({L"settings", L"import", changed.Path()}),
              Framed("Import", {"Settings imported for '" + name + "'."}));
    settings.SetOrientation(DMORIENT_PORTRAIT);
    settings.SetData(L"Darkness", 3);
    On({L"settings", L"import", changed.Path()});
    EXPECT_EQ(settings.Orientation(), DMORIENT_LANDSCAPE);
    EXPECT_EQ(settings.Data(L"Darkness"), 17U);
    On({L"settings", L"export", file.Path()});
    EXPECT_EQ(file.Read(), changed.Read());

    EXPECT_EQ(On({L"settings", L"reset"}), Framed("Settings", {"Settings reset for '" + name + "'."}));
    EXPECT_EQ(settings.Orientation(), DMORIENT_PORTRAIT);
}

TEST_F(WholeLife, ADamagedSettingsFileIsRefused) {
    const TemporaryFile file;
    On({L"settings", L"export", file.Path()});
    std::string bytes = file.Read();
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    const TemporaryFile damaged(bytes);
    EXPECT_EQ(On({L"settings", L"import", damaged.Path()}), Framed("Import", {kUnsupported}));
}

TEST_F(WholeLife, AProfilesActionArrivesAsItsBytes) {
    // The printer's own profile stands beside the server, named after the printer.
    const std::filesystem::path path = std::filesystem::path(ProgramPath(L"kemba-dal.exe")).parent_path() /
                                       "profiles" / (printer.Name() + L".profile");
    std::filesystem::create_directories(path.parent_path());
    demo::RememberMade(demo::kMadeFile, path.wstring());
    std::ofstream(path, std::ios::binary) << "Feed = ESC \"d\" 0x03\n";
    EXPECT_EQ(On({L"action", L"-n", L"Feed"}), Framed("Action", {name + ":", "Action 'Feed' is supported."}));
    EXPECT_EQ(On({L"action", L"-n", L"Cut"}),
              Framed("Action", {name + ":", "Action 'Cut' is not supported."}));
    EXPECT_EQ(On({L"action", L"feed"}), Framed("Action", {name + ":", "Action Completed."}));
    EXPECT_EQ(port.Received(3), "\x1B"
                                "d\x03");
    std::filesystem::remove(path);
}

TEST_F(WholeLife, SharingBeginsAndEnds) {
    EXPECT_EQ(Described().Attributes & PRINTER_ATTRIBUTE_SHARED, 0U);
    On({L"set", L"sharename", L"kemba-dock"});
    EXPECT_EQ(Described().Attributes & PRINTER_ATTRIBUTE_SHARED, DWORD{PRINTER_ATTRIBUTE_SHARED});
    On({L"set", L"sharename", L""});
    EXPECT_EQ(Described().Attributes & PRINTER_ATTRIBUTE_SHARED, 0U);
}

/// Where the spooler has queue commands.
struct PrinterQueue : WholeLife {
    void SetUp() override {
        EXPECT_EQ(On({L"get", L"status"}), Shown(L"Ready"));
        const std::string pause = On({L"queue", L"Pause"});
        if (demo::IsWine()) {
            for (const std::string& refused : {pause, On({L"queue", L"Resume"}), On({L"queue", L"Purge"})}) {
                EXPECT_EQ(refused, Framed("Queue", {kUnsupported}));
            }
            GTEST_SKIP() << "the spooler has no queue commands";
        }
        EXPECT_EQ(pause, Framed("Queue", {}));
        EXPECT_EQ(On({L"get", L"status"}), Shown(L"Paused"));
    }
    void Send(const std::string& bytes) {
        const TemporaryFile file(bytes);
        EXPECT_EQ(On({L"send", file.Path()}), Framed("Send", {"File sent to '" + name + "'."}));
    }
    /// Whether there are that many jobs, or there are after some seconds.
    bool HasJobs(DWORD count) {
        for (int tenths = 0; Described().cJobs != count && tenths < 100; ++tenths) {
            Sleep(100);
        }
        return Described().cJobs == count;
    }
};

TEST_F(PrinterQueue, HoldsJobsWhilePausedAndLetsThemGoWhenResumed) {
    Send("a job that waits");
    EXPECT_TRUE(HasJobs(1));
    Sleep(1'000); // long enough for it to be printed, if it were
    EXPECT_TRUE(HasJobs(1));
    EXPECT_EQ(port.Received(0), "");
    EXPECT_EQ(On({L"queue", L"Pause"}), Framed("Queue", {})) << "once more";
    EXPECT_EQ(On({L"queue", L"Resume"}), Framed("Queue", {}));
    EXPECT_EQ(port.Received(16), "a job that waits");
    EXPECT_TRUE(HasJobs(0));
    EXPECT_EQ(On({L"get", L"status"}), Shown(L"Ready"));
}

TEST_F(PrinterQueue, PurgeDeletesTheJobsOfAPausedQueue) {
    for (int job = 1; job <= 3; ++job) {
        Send("a job that never comes");
    }
    EXPECT_TRUE(HasJobs(3));
    EXPECT_EQ(On({L"queue", L"Purge"}), Framed("Queue", {}));
    EXPECT_TRUE(HasJobs(0));
    EXPECT_EQ(On({L"queue", L"Resume"}), Framed("Queue", {}));
    Send("the next");
    EXPECT_EQ(port.Received(8), "the next");
}

TEST_F(WholeLife, TheDriversVersionIsThatOfItsFile) {
    const std::string shown = On({L"version", L"driver"});
    if (demo::IsWine()) {
        EXPECT_EQ(shown, name + ": 10.0.0.0\r\n"); // as Wine's own files have it
    } else {
        EXPECT_TRUE(std::regex_search(shown, std::regex(name + R"(: \d+\.\d+\.\d+\.\d+)"))) << shown;
    }
}

TEST_F(WholeLife, AnEmptyFileIsRefused) {
    const TemporaryFile file;
    EXPECT_EQ(On({L"send", file.Path()}), Framed("Send", {kUnsupported}));
}

} // namespace
