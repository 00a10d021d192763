// action: words and codes, the question option, messages and failures.
#include <objbase.h>

#include <gtest/gtest.h>

#include <cwctype>
#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Action : public WholeRunTest {
  protected:
    /// The output of a run over the first printer that shows one message.
    std::string FirstFramed(const std::string& message) {
        return Framed("Action", {firstName + ":", message});
    }

    /// The calls for the n-th printer up to the performed action.
    static Lines Performed(int number, const std::string& name, int execute, int code) {
        const std::string object = "#" + std::to_string(number);
        return {"DriverAutomation" + object + ".PutPrinterName(\"" + name + "\")",
                "DriverActions" + object + ".PutExecute(" + std::to_string(execute) + ")",
                "DriverAutomation" + object + ".PerformAction(" + std::to_string(code) +
                    ", VT_DISPATCH:DriverActions" + object + ")"};
    }

    static Lines Joined(Lines lines, const Lines& more) {
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    }

    const std::string asked = "DriverActions#1.GetSupported()";
    const std::string askedForDialog = "DriverActions#1.GetDisplaysInterface()";
};

struct WordRow {
    const wchar_t* word;
    int code;
};

const WordRow kWords[] = {
    {L"Test", 1},
    {L"Blank", 2},
    {L"Cut", 3},
    {L"Feed", 4},
    {L"ManageCache", 5},
    {L"FlushCache", 6},
    {L"Reset", 7},
    {L"FactoryDefaults", 8},
    {L"Calibrate", 9},
    {L"PrintConfiguration", 10},
    {L"ConfigureMemory", 11},
    {L"FormatMemory", 30},
    {L"RFIDOptions", 13},
    {L"StatusMonitoring", 14},
    {L"ReadInformation", 15},
    {L"SendPrinterCommand", 16},
    {L"ConfigurePrinter", 17},
};

void PrintTo(const WordRow& row, std::ostream* out) {
    *out << Printed(row.word);
}

class ActionWord : public Action, public testing::WithParamInterface<WordRow> {};

INSTANTIATE_TEST_SUITE_P(Words, ActionWord, testing::ValuesIn(kWords),
                         [](const auto& row) { return Printed(row.param.word); });

TEST_P(ActionWord, IsFoundInAnyCaseAndShownAsTheTableSpellsIt) {
    const std::wstring word = GetParam().word;
    std::wstring lower;
    std::wstring upper;
    for (const wchar_t letter : word) {
        lower += static_cast<wchar_t>(std::towlower(letter));
        upper += static_cast<wchar_t>(std::towupper(letter));
    }
    int object = 0;
    for (const std::wstring& typed : {word, lower, upper}) {
        server.ClearJournal();
        ++object;
        EXPECT_EQ(RunOnFirst({L"action", typed}).output, FirstFramed("Action Completed."));
        EXPECT_EQ(server.Calls(), Joined(Performed(object, firstName, 1, GetParam().code),
                                         {"DriverActions#" + std::to_string(object) + ".GetSupported()"}));
    }
    server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE);
    for (const std::wstring& typed : {word, lower, upper}) {
        EXPECT_EQ(RunOnFirst({L"action", typed, L"-n"}).output,
                  FirstFramed("Action '" + Printed(word) + "' is not supported."));
    }
}

TEST_F(Action, EveryPrinterHasItsOwnObjectsReleasedBeforeTheNext) {
    const auto run = RunOnBoth({L"action", L"Test"});
    EXPECT_EQ(run.output, Framed("Action", {firstName + ":", "Action Completed.", secondName + ":",
                                            "Action Completed."}));
    EXPECT_EQ(run.status, 0);
    Lines expected{"CoInitialize(2)"};
    for (const auto& [number, name] : {std::pair(1, firstName), std::pair(2, secondName)}) {
        const std::string object = "#" + std::to_string(number);
        const std::string automation = "DriverAutomation" + object;
        const std::string actions = "DriverActions" + object;
        const Lines performed = Performed(number, name, 1, 1);
        expected = Joined(expected,
                          {"new " + automation, automation + ".Run()",
                           automation + ".QueryInterface(IDriverAutomation)", performed[0], "new " + actions,
                           actions + ".Run()", actions + ".QueryInterface(IDriverActions)", performed[1],
                           performed[2], actions + ".GetSupported()", "~" + actions, "~" + automation});
    }
    EXPECT_EQ(server.Journal(), Joined(expected, {"CoUninitialize()"}));
}

TEST_F(Action, TheQuestionOptionOnlyAsks) {
    const std::vector<Words> lines = {{L"-n", L"Test"}, {L"Test", L"-n"}, {L"Test", L"/N"},
                                      {L"/n", L"Test"}, {L"-N", L"Test"}, {L"-n", L"Test", L"/n"}};
    int object = 0;
    for (Words words : lines) {
        server.ClearJournal();
        ++object;
        words.insert(words.begin(), L"action");
        const auto run = RunOnFirst(words);
        EXPECT_EQ(run.output, FirstFramed("Action 'Test' is supported."));
        EXPECT_EQ(run.status, 0);
        const std::string actions = "DriverActions#" + std::to_string(object);
        EXPECT_EQ(server.Calls(), Joined(Performed(object, firstName, 0, 1),
                                         {actions + ".GetSupported()", actions + ".GetDisplaysInterface()"}));
    }
}

TEST_F(Action, ThreeAnswersToTheQuestion) {
    const struct {
        VARIANT_BOOL supported;
        VARIANT_BOOL displays;
        const char* message;
    } rows[] = {
        {0, 0, "Action 'Cut' is not supported."},
        {-1, 0, "Action 'Cut' is supported."},
        {0, -1, "Action 'Cut' is supported and displays a user interface."},
        {-1, -1, "Action 'Cut' is supported and displays a user interface."},
        {1, 0, "Action 'Cut' is supported."},
        {2, 0, "Action 'Cut' is supported."},
        {0x0100, 0, "Action 'Cut' is supported."},
        {-32768, 0, "Action 'Cut' is supported."},
        {0, 2, "Action 'Cut' is supported and displays a user interface."},
        {0, 0x0100, "Action 'Cut' is supported and displays a user interface."},
        {0, -32768, "Action 'Cut' is supported and displays a user interface."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.supported << " " << row.displays);
        server.GiveFlag("IDriverActions.GetSupported", row.supported);
        server.GiveFlag("IDriverActions.GetDisplaysInterface", row.displays);
        EXPECT_EQ(RunOnFirst({L"action", L"-n", L"cut"}).output, FirstFramed(row.message));
    }
}

TEST_F(Action, AnyFlagButZeroIsACompletedAction) {
    for (const VARIANT_BOOL flag : std::initializer_list<VARIANT_BOOL>{-1, 1, 2, 0x0100, -32768}) {
        server.GiveFlag("IDriverActions.GetSupported", flag);
        EXPECT_EQ(RunOnFirst({L"action", L"Feed"}).output, FirstFramed("Action Completed."));
    }
}

TEST_F(Action, ADialogNotReportedAsCarriedOutIsAskedAboutAgain) {
    server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE);
    server.GiveFlag("IDriverActions.GetDisplaysInterface", VARIANT_TRUE);
    EXPECT_EQ(RunOnFirst({L"action", L"ManageCache"}).output,
              FirstFramed("Action 'ManageCache' is supported and displays a user interface."));
    EXPECT_EQ(server.Calls(), Joined(Performed(1, firstName, 1, 5), {asked, asked, askedForDialog}));
}

TEST_F(Action, TheSecondQuestionAfterAnActionCounts) {
    server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE).ForCall(1);
    EXPECT_EQ(RunOnFirst({L"action", L"Test"}).output, FirstFramed("Action 'Test' is supported."));
    EXPECT_EQ(server.Calls(), Joined(Performed(1, firstName, 1, 1), {asked, asked, askedForDialog}));
}

TEST_F(Action, TheLastWordWinsAndUnknownOnesAreIgnored) {
    const struct {
        Words words;
        int code;
    } rows[] = {
        {{L"Test", L"Feed"}, 4},
        {{L"Feed", L"Test"}, 1},
        {{L"Feed", L"bogus"}, 4},
        {{L"bogus", L"Feed"}, 4},
        {{L"Cut", L"Feeds", L"Tes", L"", L"-x", L"/nn", L"-", L"12"}, 3},
        {{L"FormatMemory", L"formatmemory"}, 30},
    };
    int object = 0;
    for (const auto& row : rows) {
        server.ClearJournal();
        Words words = row.words;
        words.insert(words.begin(), L"action");
        EXPECT_EQ(RunOnFirst(words).output, FirstFramed("Action Completed."));
        EXPECT_EQ(server.Calls()[2], Performed(++object, firstName, 1, row.code)[2]);
    }
}

TEST_F(Action, WithoutWordsStopsBeforeAnyObjectIsMade) {
    const auto run = RunOnBoth({L"action"});
    EXPECT_EQ(run.output, Framed("Action", {"Incorrect number of arguments."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

TEST_F(Action, AnUndefinedActionIsReportedPerPrinterAndSucceeds) {
    // The long s and the dotless i would match under the folding of some locales.
    const std::vector<Words> lines = {{L"Bogus"},
                                      {L"-n"},
                                      {L"12"},
                                      {L""},
                                      {L"Test "},
                                      {L"te\x017Ft"},
                                      {L"RF\x0131"
                                       L"DOptions"}};
    for (Words words : lines) {
        words.insert(words.begin(), L"action");
        const auto run = RunOnBoth(words);
        EXPECT_EQ(run.output, Framed("Action", {"Action is undefined.", "Action is undefined."}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(server.Calls(), Lines{}) << "nothing is asked of the server";
    }
}

TEST_F(Action, TheNameIsPrintedBeforeTheServerIsSought) {
    server.FailActivation(FakeClass::DriverAutomation, REGDB_E_CLASSNOTREG);
    const auto run = RunOnBoth({L"action", L"Test"});
    EXPECT_EQ(run.output, Framed("Action", {firstName + ":", "", secondName + ":", ""}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Action, QuietModePrintsNothingAndActs) {
    const auto run = RunOnFirst({L"action", L"Test", L"/q"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(server.Calls().back(), asked);
}

} // namespace
