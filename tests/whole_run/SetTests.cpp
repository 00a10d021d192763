// set: fields, values and failures.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Set : public WholeRunTest {};

struct FieldRow {
    const wchar_t* word;
    const wchar_t* upper;
    const wchar_t* mixed;
    const char* operation;
};

const FieldRow kFields[] = {
    {L"comment", L"COMMENT", L"Comment", "PutComment"},
    {L"location", L"LOCATION", L"Location", "PutLocation"},
    {L"sharename", L"SHARENAME", L"ShareName", "PutShareName"},
};

void PrintTo(const FieldRow& row, std::ostream* out) {
    *out << row.operation;
}

class SetField : public Set, public testing::WithParamInterface<FieldRow> {
  protected:
    /// The call that writes the value, on the n-th object.
    static std::string Written(int number, const std::wstring& value) {
        return "DriverAutomation#" + std::to_string(number) + "." + GetParam().operation + "(\"" +
               Narrow(value) + "\")";
    }
};

INSTANTIATE_TEST_SUITE_P(Words, SetField, testing::ValuesIn(kFields),
                         [](const auto& row) { return Printed(row.param.word); });

TEST_P(SetField, IsWrittenToEveryPrinterWithoutALine) {
    const auto run = RunOnBoth({L"set", GetParam().word, L"by the door", L"ignored"});
    EXPECT_EQ(run.output, Framed("Set", {}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(
        server.Calls(),
        (Lines{"DriverAutomation#1.PutPrinterName(\"" + firstName + "\")", Written(1, L"by the door"),
               "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")", Written(2, L"by the door")}));
}

TEST_P(SetField, IsFoundInAnyCase) {
    int object = 0;
    for (const wchar_t* const word : {GetParam().word, GetParam().upper, GetParam().mixed}) {
        EXPECT_EQ(RunOnFirst({L"set", word, L"x"}).output, Framed("Set", {}));
        EXPECT_EQ(server.Calls().back(), Written(++object, L"x"));
    }
}

TEST_P(SetField, PassesTheValueAsItStands) {
    int object = 0;
    for (const std::wstring& value :
         {std::wstring(), std::wstring(L"%1"), std::wstring(L" a \"b\" \\ c:: "),
          std::wstring(L"\x0141\x00F3d\x017A \x65E5\x672C"), std::wstring(30'000, L'v')}) {
        EXPECT_EQ(RunOnFirst({L"set", GetParam().word, value}).output, Framed("Set", {}));
        EXPECT_EQ(server.Calls().back(), Written(++object, value));
    }
}

TEST_F(Set, EveryPrinterHasItsOwnObjectReleasedBeforeTheNext) {
    RunOnBoth({L"set", L"comment", L"x"});
    EXPECT_EQ(server.Journal(),
              (Lines{"CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
                     "DriverAutomation#1.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")",
                     "DriverAutomation#1.PutComment(\"x\")", "~DriverAutomation#1", "new DriverAutomation#2",
                     "DriverAutomation#2.Run()", "DriverAutomation#2.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
                     "DriverAutomation#2.PutComment(\"x\")", "~DriverAutomation#2", "CoUninitialize()"}));
}

TEST_F(Set, WithFewerThanTwoWordsStopsBeforeAnyObjectIsMade) {
    for (const Words& words : {Words{L"set"}, {L"set", L"comment"}, {L"set", L"bogus"}}) {
        server.ClearJournal();
        const auto run = RunOnBoth(words);
        EXPECT_EQ(run.output, Framed("Set", {"Incorrect number of arguments."}));
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
    }
}

TEST_F(Set, AnUnknownFieldIsReportedAsTypedForEveryPrinterAfterTheBinding) {
    for (const wchar_t* const word : {L"portname", L"ModelName", L"status", L"comm", L"comments", L"", L"%1",
                                      L"locat\x0131on", L"\x017Fharename"}) {
        server.ClearJournal();
        const auto run = RunOnBoth({L"set", word, L"x"});
        const std::string rejected = "Argument '" + Printed(word) + "' is invalid.";
        EXPECT_EQ(run.output, Framed("Set", {rejected, rejected}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(server.Calls().size(), 2U) << "each printer is bound before the word is looked at";
    }
}

TEST_F(Set, ARefusedBindingIsUnsupportedEvenForAnUnknownField) {
    server.Fail("IDriverAutomation.PutPrinterName", E_INVALIDARG);
    EXPECT_EQ(RunOnFirst({L"set", L"bogus", L"x"}).output, Framed("Set", {kUnsupported}));
}

} // namespace
