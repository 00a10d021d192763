// get: one line per printer, and what happens when the server does not play along.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Get : public WholeRunTest {
  protected:
    /// The output of a run over one printer, between the two frame lines.
    std::string FirstFramed(const std::string& line) { return Framed("Get", {line}); }
};

struct Field {
    const wchar_t* word;
    const char* operation; ///< that reads it
    Lines calls;           ///< after the binding
};

const Field kFields[] = {
    {L"portname", "IDriverAutomation.GetPortName", {"DriverAutomation#1.GetPortName()"}},
    {L"modelname", "IDriverAutomation.GetModelName", {"DriverAutomation#1.GetModelName()"}},
    {L"comment", "IDriverAutomation.GetComment", {"DriverAutomation#1.GetComment()"}},
    {L"location", "IDriverAutomation.GetLocation", {"DriverAutomation#1.GetLocation()"}},
    {L"sharename", "IDriverAutomation.GetShareName", {"DriverAutomation#1.GetShareName()"}},
    {L"status",
     "IPrinterInformation.GetStatus",
     {"DriverAutomation#1.GetPrinterInformation()", "PrinterInformation#1.GetStatus()"}},
};

class GetField : public Get, public testing::WithParamInterface<Field> {
  protected:
    Lines BoundAnd(const Lines& calls) const {
        Lines lines{"DriverAutomation#1.PutPrinterName(\"" + firstName + "\")"};
        lines.insert(lines.end(), calls.begin(), calls.end());
        return lines;
    }
};

INSTANTIATE_TEST_SUITE_P(Words, GetField, testing::ValuesIn(kFields),
                         [](const auto& row) { return Printed(row.param.word); });

TEST_P(GetField, IsReadByItsOperationAndPrintedAfterTheName) {
    server.GiveText(GetParam().operation, L"a value: with / and %1");
    const auto run = RunOnFirst({L"get", GetParam().word});
    EXPECT_EQ(run.output, FirstFramed(firstName + ": a value: with / and %1"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(server.Calls(), BoundAnd(GetParam().calls));
}

TEST_P(GetField, IsFoundInAnyCase) {
    server.GiveText(GetParam().operation, L"value");
    std::wstring word = GetParam().word;
    word[0] = static_cast<wchar_t>(word[0] - L'a' + L'A');
    EXPECT_EQ(RunOnFirst({L"get", word}).output, FirstFramed(firstName + ": value"));
    for (wchar_t& letter : word) {
        letter = letter >= L'a' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
    }
    EXPECT_EQ(RunOnFirst({L"GET", word}).output, FirstFramed(firstName + ": value"));
}

TEST_P(GetField, EmptyAndNullTextsPrintTheNameAlone) {
    server.GiveText(GetParam().operation, L"");
    EXPECT_EQ(RunOnFirst({L"get", GetParam().word}).output, FirstFramed(firstName + ": "));
    server.GiveNull(GetParam().operation);
    EXPECT_EQ(RunOnFirst({L"get", GetParam().word}).output, FirstFramed(firstName + ": "));
}

TEST_F(Get, EveryPrinterHasItsOwnObjectReleasedBeforeTheNext) {
    const auto run = RunOnBoth({L"get", L"comment"});
    EXPECT_EQ(run.output, Framed("Get", {firstName + ": Comment of " + firstName,
                                         secondName + ": Comment of " + secondName}));
    EXPECT_EQ(server.Journal(),
              (Lines{"CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
                     "DriverAutomation#1.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")",
                     "DriverAutomation#1.GetComment()", "~DriverAutomation#1", "new DriverAutomation#2",
                     "DriverAutomation#2.Run()", "DriverAutomation#2.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
                     "DriverAutomation#2.GetComment()", "~DriverAutomation#2", "CoUninitialize()"}));
}

TEST_F(Get, TheStatusObjectIsReleasedBeforeThePrinters) {
    RunOnFirst({L"get", L"status"});
    const Lines journal = server.Journal();
    const auto released = std::find(journal.begin(), journal.end(), "~PrinterInformation#1");
    ASSERT_NE(released, journal.end());
    EXPECT_EQ(released[1], "~DriverAutomation#1");
}

TEST_F(Get, WithoutAFieldStopsBeforeAnyObjectIsMade) {
    const auto run = RunOnBoth({L"get"});
    EXPECT_EQ(run.output, Framed("Get", {"Incorrect number of arguments."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

TEST_F(Get, FurtherWordsAreIgnored) {
    server.GiveText("IPrinterInformation.GetStatus", L"Ready");
    EXPECT_EQ(RunOnFirst({L"get", L"Status", L"extra", L"words"}).output, FirstFramed(firstName + ": Ready"));
}

TEST_F(Get, AnUnknownFieldIsReportedAsTypedForEveryPrinterAfterTheBinding) {
    for (const wchar_t* const word : {L"stat", L"Statuss", L"", L"%1", L"st\x00E4tus",
                                      L"\x0131"
                                      L"d"}) {
        server.ClearJournal();
        const auto run = RunOnBoth({L"get", word});
        const std::string rejected = "Argument '" + Printed(word) + "' is invalid.";
        EXPECT_EQ(run.output, Framed("Get", {rejected, rejected}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(server.Calls().size(), 2U) << "each printer is bound before the word is looked at";
    }
}

TEST_F(Get, LettersBeyondAToZAreNotFolded) {
    // The dotless i and the long s would match under the folding of some locales.
    for (const wchar_t* const word : {L"portnam\x0115", L"locat\x0131on", L"\x017Ftatus"}) {
        EXPECT_EQ(RunOnFirst({L"get", word}).output,
                  FirstFramed("Argument '" + Printed(word) + "' is invalid."));
    }
}

TEST_F(Get, AMissingInterfaceIsUnsupported) {
    server.LackInterface(FakeClass::DriverAutomation);
    EXPECT_EQ(RunOnFirst({L"get", L"comment"}).output, FirstFramed(kUnsupported));
}

TEST_F(Get, AMissingServerIsUnsupported) {
    server.Unregister(FakeClass::DriverAutomation);
    const auto run = RunOnBoth({L"get", L"comment"});
    EXPECT_EQ(run.output, Framed("Get", {kUnsupported, kUnsupported}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Get, ARefusedBindingIsUnsupportedEvenForAnUnknownField) {
    server.Fail("IDriverAutomation.PutPrinterName", E_INVALIDARG);
    EXPECT_EQ(RunOnFirst({L"get", L"bogus"}).output, FirstFramed(kUnsupported));
}

TEST_F(Get, AMissingStatusObjectIsUnsupported) {
    server.GiveNull("IDriverAutomation.GetPrinterInformation");
    EXPECT_EQ(RunOnFirst({L"get", L"status"}).output, FirstFramed(kUnsupported));
}

TEST_F(Get, QuietModePrintsNothingAndKeepsTheStatus) {
    const auto run = RunOnFirst({L"/q", L"get", L"comment"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(server.Calls().back(), "DriverAutomation#1.GetComment()");
}

TEST_F(Get, ALongValueArrivesWhole) {
    server.GiveText("IDriverAutomation.GetComment", std::wstring(30'000, L'x'));
    EXPECT_EQ(RunOnFirst({L"get", L"comment"}).output,
              FirstFramed(firstName + ": " + std::string(30'000, 'x')));
}

} // namespace
