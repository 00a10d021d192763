// version: its sections, missing texts, and failures that the entry point or nobody prints.
#include <algorithm>
#include <cwchar>
#include <string>

#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/SetAside.h"
#include "tests/whole_run/FaultTable.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

/// A system that tells its version in every detail, and none or one release identifier.
class Version : public WholeRunTest {
  protected:
    Version()
        : release(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", L"ReleaseId") {
        m_calls->getVersionEx = [](OSVERSIONINFOW* plain) -> WINBOOL {
            plain->dwMajorVersion = 6;
            plain->dwMinorVersion = 1;
            plain->dwBuildNumber = 7601;
            plain->dwPlatformId = VER_PLATFORM_WIN32_NT;
            std::wcscpy(plain->szCSDVersion, L"Service Pack 1");
            if (plain->dwOSVersionInfoSize == sizeof(OSVERSIONINFOEXW)) {
                reinterpret_cast<OSVERSIONINFOEXW*>(plain)->wProductType = VER_NT_WORKSTATION;
            }
            return TRUE;
        };
    }

    static std::string DriverLine(const std::string& name) {
        return name + ": DriverVersion of " + name + " (DriverVersionDetail of " + name + ")";
    }

    const std::string serverLine = "DAL: Version [VersionDetail]";
    const std::string systemLine = "OS: Windows 7";
    const RegistryPreset release;

  private:
    SystemCallsPreset m_calls;
};

TEST_F(Version, PrintsServerSystemAndDrivers) {
    release.Set(RegistryData::OfText(L"2009"));
    const auto run = RunOnBoth({L"version"});
    EXPECT_EQ(run.output, Output({serverLine, systemLine, "OS Version: 2009 (Build 7601 (Service Pack 1))",
                                  DriverLine(firstName), DriverLine(secondName)}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)",
                                       "new VersionInformation#1",
                                       "VersionInformation#1.Run()",
                                       "VersionInformation#1.QueryInterface(IVersionInformation)",
                                       "VersionInformation#1.GetVersion()",
                                       "~VersionInformation#1",
                                       "new VersionInformation#2",
                                       "VersionInformation#2.Run()",
                                       "VersionInformation#2.QueryInterface(IVersionInformation)",
                                       "VersionInformation#2.GetVersionDetail()",
                                       "~VersionInformation#2",
                                       "new DriverAutomation#1",
                                       "DriverAutomation#1.Run()",
                                       "DriverAutomation#1.QueryInterface(IDriverAutomation)",
                                       "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")",
                                       "DriverAutomation#1.GetDriverVersion()",
                                       "DriverAutomation#1.GetDriverVersionDetail()",
                                       "~DriverAutomation#1",
                                       "new DriverAutomation#2",
                                       "DriverAutomation#2.Run()",
                                       "DriverAutomation#2.QueryInterface(IDriverAutomation)",
                                       "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
                                       "DriverAutomation#2.GetDriverVersion()",
                                       "DriverAutomation#2.GetDriverVersionDetail()",
                                       "~DriverAutomation#2",
                                       "CoUninitialize()"}));
}

TEST_F(Version, PrintsOneSectionForItsWordInAnyCase) {
    for (const wchar_t* const word : {L"interface", L"INTERFACE", L"Interface"}) {
        EXPECT_EQ(RunOnFirst({L"version", word, L"os"}).output, Output({serverLine}));
    }
    for (const wchar_t* const word : {L"os", L"OS", L"Os"}) {
        EXPECT_EQ(RunOnFirst({L"version", word, L"driver"}).output, Output({systemLine}));
    }
    for (const wchar_t* const word : {L"driver", L"DRIVER", L"Driver"}) {
        EXPECT_EQ(RunOnFirst({L"VERSION", word, L"interface"}).output, Output({DriverLine(firstName)}));
    }
}

TEST_F(Version, AnUnknownWordPrintsEverything) {
    for (const wchar_t* const word : {L"foo", L"", L"inter", L"drivers", L"-n", L"o\x017F"}) {
        const auto run = RunOnFirst({L"version", word, L"os"});
        EXPECT_EQ(run.output, Output({serverLine, systemLine, DriverLine(firstName)}));
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(Version, OfServerAndSystemNeedsNoPrinter) {
    for (const wchar_t* const word : {L"interface", L"os"}) {
        const auto run = Run({L"/p", L"No such printer", L"version", word});
        EXPECT_EQ(run.output, Output({word == std::wstring(L"os") ? systemLine : serverLine}));
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(Version, OfDriversNeedsAPrinter) {
    const Lines noPrinter{"The printer 'No such printer' is not found.",
                          "No printers selected for this operation."};
    const auto drivers = Run({L"/p", L"No such printer", L"version", L"driver"});
    EXPECT_EQ(drivers.output, Output(noPrinter));
    EXPECT_EQ(drivers.status, 2);
    const auto everything = Run({L"/p", L"No such printer", L"version"});
    EXPECT_EQ(everything.output, Output({serverLine, systemLine, noPrinter[0], noPrinter[1]}));
    EXPECT_EQ(everything.status, 2);
}

TEST_F(Version, TheReleaseLineNeedsAnIdentifier) {
    EXPECT_EQ(RunOnFirst({L"version", L"os"}).output, Output({systemLine}));
    release.Set(RegistryData::OfText(L""));
    EXPECT_EQ(RunOnFirst({L"version", L"os"}).output, Output({systemLine}));
    release.Set(RegistryData::OfText(L"22H2 %1"));
    EXPECT_EQ(RunOnFirst({L"version", L"os"}).output,
              Output({systemLine, "OS Version: 22H2 %1 (Build 7601 (Service Pack 1))"}));
}

TEST_F(Version, MissingTextsOfTheServerAreUnknown) {
    const struct {
        const char* operation;
        const char* line;
    } rows[] = {
        {"IVersionInformation.GetVersion", "DAL: Unknown [VersionDetail]"},
        {"IVersionInformation.GetVersionDetail", "DAL: Unknown [Unknown]"},
    };
    for (const auto& row : rows) {
        server.GiveNull(row.operation);
        EXPECT_EQ(RunOnFirst({L"version", L"interface"}).output, Output({row.line}));
        server.GiveText(row.operation, L"");
        EXPECT_EQ(RunOnFirst({L"version", L"interface"}).output, Output({row.line}));
    }
}

TEST_F(Version, ADriverLineShowsWhatThereIs) {
    const struct {
        const wchar_t* version;
        const wchar_t* detail;
        const char* text;
    } rows[] = {
        {L"7.4", L"build 2", "7.4 (build 2)"}, {L"7.4", L"", "7.4"},  {L"7.4", nullptr, "7.4"},
        {L"", L"build 2", "Unknown"},          {L"", L"", "Unknown"}, {nullptr, L"build 2", "Unknown"},
        {L"%1", L"(x)", "%1 ((x))"},
    };
    const auto give = [&](const char* operation, const wchar_t* text) {
        if (text) {
            server.GiveText(operation, text);
        } else {
            server.GiveNull(operation);
        }
    };
    for (const auto& row : rows) {
        server.ClearJournal();
        give("IDriverAutomation.GetDriverVersion", row.version);
        give("IDriverAutomation.GetDriverVersionDetail", row.detail);
        const auto run = RunOnFirst({L"version", L"driver"});
        EXPECT_EQ(run.output, Output({firstName + ": " + row.text}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(server.Calls().size(), 3U) << "both texts are always asked for";
    }
}

TEST_F(Version, AFailureOfTheServersVersionIsPrintedAndSucceeds) {
    server.Fail("IVersionInformation.GetVersionDetail", E_ACCESSDENIED)
        .WithInformation(L"Driver", L"Out of paper");
    Lines expected = ErrorLines(E_ACCESSDENIED);
    expected.push_back("Source: Driver");
    expected.push_back(""); // in place of the description
    for (const Words& words : {Words{L"version"}, {L"version", L"interface"}, {L"version", L"foo"}}) {
        const auto run = RunOnFirst(words);
        EXPECT_EQ(run.output, Output(expected));
        EXPECT_EQ(run.status, 0);
    }
    EXPECT_EQ(RunOnFirst({L"/q", L"version"}).output, "");
    EXPECT_EQ(RunOnFirst({L"version", L"os"}).output, Output({systemLine}));
}

TEST_F(Version, AServerWithoutTheInterfaceIsAnInvalidPointer) {
    server.LackInterface(FakeClass::VersionInformation);
    const auto run = RunOnFirst({L"version"});
    EXPECT_EQ(run.output, Output(ErrorLines(E_POINTER)));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Version, AFailingDriverEndsTheSectionSilently) {
    for (const char* const operation :
         {"IDriverAutomation.PutPrinterName", "IDriverAutomation.GetDriverVersion",
          "IDriverAutomation.GetDriverVersionDetail"}) {
        for (const bool throws : {false, true}) {
            server.ClearJournal();
            (throws ? server.Throw(operation) : server.Fail(operation, E_FAIL)).ForPrinter(first.Name());
            const auto run = RunOnBoth({L"version"});
            EXPECT_EQ(run.output, Output({serverLine, systemLine}));
            EXPECT_EQ(run.status, 2);
            const Lines journal = WithoutNumbers(server.Journal());
            EXPECT_EQ(std::count(journal.begin(), journal.end(), "new DriverAutomation"), 1);
        }
    }
}

TEST_F(Version, AFailingSecondDriverKeepsTheFirstLine) {
    server.Fail("IDriverAutomation.GetDriverVersion", E_FAIL).ForPrinter(second.Name());
    const auto run = RunOnBoth({L"version", L"driver"});
    EXPECT_EQ(run.output, Output({DriverLine(firstName)}));
    EXPECT_EQ(run.status, 2);
}

} // namespace
