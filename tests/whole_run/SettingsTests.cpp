// settings: the sub-action words, and reset.
#include <string>

#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Settings : public WholeRunTest {
  protected:
    std::string ResetOf(const std::string& name) { return "Settings reset for '" + name + "'."; }

    const std::string begin = "Executing 'Settings' command.";
    const std::string end = "Finished processing command.";
};

TEST_F(Settings, ResetServesEveryPrinterWithAnObjectOfItsOwn) {
    const auto run = RunOnBoth({L"settings", L"reset"});
    EXPECT_EQ(run.output, Output({begin, ResetOf(firstName), ResetOf(secondName), end}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(
        server.Journal(),
        (Lines{"CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
               "DriverAutomation#1.QueryInterface(IDriverAutomation)",
               "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")", "DriverAutomation#1.GetSettings()",
               "DriverSettings#1.ResetSettings(VT_ERROR:0x80020004)", "~DriverSettings#1",
               "~DriverAutomation#1", "new DriverAutomation#2", "DriverAutomation#2.Run()",
               "DriverAutomation#2.QueryInterface(IDriverAutomation)",
               "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
               "DriverAutomation#2.GetSettings()", "DriverSettings#2.ResetSettings(VT_ERROR:0x80020004)",
               "~DriverSettings#2", "~DriverAutomation#2", "CoUninitialize()"}));
}

TEST_F(Settings, TheSubActionIsFoundInAnyCaseAndFurtherWordsAreIgnored) {
    for (const wchar_t* const word : {L"Reset", L"RESET", L"rEsEt"}) {
        EXPECT_EQ(RunOnFirst({L"SETTINGS", word, L"import", L"x"}).output,
                  Output({begin, ResetOf(firstName), end}));
    }
    const TemporaryFile file;
    for (const wchar_t* const word : {L"Import", L"IMPORT"}) {
        EXPECT_EQ(RunOnFirst({L"settings", word, file.Path()}).output,
                  Output({"Executing 'Import' command.", "Settings imported for '" + firstName + "'.", end}));
    }
    for (const wchar_t* const word : {L"Export", L"EXPORT"}) {
        EXPECT_EQ(RunOnFirst({L"settings", word, file.Path()}).output,
                  Output({"Executing 'Export' command.", "Settings exported for '" + firstName + "'.", end}));
    }
}

TEST_F(Settings, ASubActionsCommandHasItsOwnRuntimeInsideTheOuterOne) {
    const TemporaryFile file;
    for (const wchar_t* const word : {L"import", L"export"}) {
        server.ClearJournal();
        RunOnFirst({L"settings", word, file.Path()});
        const Lines journal = server.Journal();
        ASSERT_GT(journal.size(), 4U);
        EXPECT_EQ(journal[0], "CoInitialize(2)");
        EXPECT_EQ(journal[1], "CoInitialize(2)");
        EXPECT_EQ(journal[journal.size() - 2], "CoUninitialize()");
        EXPECT_EQ(journal[journal.size() - 1], "CoUninitialize()");
    }
}

TEST_F(Settings, WithoutASubActionFailsWithoutAnyFrame) {
    const auto run = RunOnBoth({L"settings"});
    EXPECT_EQ(run.output, Output({"Incorrect number of arguments."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Settings, AnUnknownSubActionIsReportedAsTypedOnce) {
    for (const wchar_t* const word : {L"bogus", L"Bogus", L"", L"res", L"resets", L"reset ", L"%1",
                                      L"re\x017F"
                                      L"et"}) {
        const auto run = RunOnBoth({L"settings", word, L"reset"});
        EXPECT_EQ(run.output, Output({"The command '" + Printed(word) + "' is unknown."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Settings, AnUnknownPrinterIsReportedAtEachOfTheTwoSelections) {
    const std::string missing = "The printer 'No such printer' is not found.";
    const auto reset = RunOnFirst({L"/p", L"No such printer", L"settings", L"reset"});
    EXPECT_EQ(reset.output, Output({missing, missing, begin, ResetOf(firstName), end}));
    EXPECT_EQ(reset.status, 0);
    const TemporaryFile file;
    const auto imported = RunOnFirst({L"/p", L"No such printer", L"settings", L"import", file.Path()});
    EXPECT_EQ(imported.output, Output({missing, missing, "Executing 'Import' command.",
                                       "Settings imported for '" + firstName + "'.", end}));
    const auto exported = RunOnFirst({L"/p", L"No such printer", L"settings", L"export", file.Path()});
    EXPECT_EQ(exported.output, Output({missing, missing, "Executing 'Export' command.",
                                       "Settings exported for '" + firstName + "'.", end}));
}

TEST_F(Settings, WithNoPrinterLeftNothingElseIsLookedAt) {
    for (const Words& words : {Words{L"settings"},
                               {L"settings", L"bogus"},
                               {L"settings", L"reset"},
                               {L"settings", L"import"},
                               {L"settings", L"export"}}) {
        Words line{L"/p", L"No such printer"};
        line.insert(line.end(), words.begin(), words.end());
        const auto run = Run(line);
        EXPECT_EQ(run.output, Output({"The printer 'No such printer' is not found.",
                                      "No printers selected for this operation."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Settings, APrinterWithoutAServerIsReportedAndTheNextOneServed) {
    server.FailActivation(FakeClass::DriverAutomation, REGDB_E_CLASSNOTREG).ForObject(1);
    const auto run = RunOnBoth({L"settings", L"reset"});
    EXPECT_EQ(run.output, Output({begin, kUnsupported, ResetOf(secondName), end}));
    EXPECT_EQ(run.status, 0);
}

} // namespace
