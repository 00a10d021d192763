// Words that nobody should type: they are met as any other, and nothing else happens.
#include <string>

#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class BadInput : public WholeRunTest {};

/// Words that must come through as they are, by what is odd about them.
const std::wstring kOddWords[] = {
    L"",
    L" ",
    std::wstring(32'000, L'w'),
    L"\xD83D",             // a high surrogate without its low one
    L"a\xDE00z",           // and the other way round
    L"\xD83D\xDE00",       // a whole pair
    L"\x30C9\x30C3\x30AF", // beyond most code pages
    L"quote\"quote",
    L"'%1' %2 %% %s %n",
    L"a/b\\c::d//e",
    L"?",
    L"*.*",
    L"line\r\nbreak\ttab",
    L"#error:COM",
};

TEST_F(BadInput, AsACommandWordIsUnknown) {
    for (const std::wstring& word : kOddWords) {
        if (word == L"?") {
            continue; // the one that is a command
        }
        SCOPED_TRACE(Printed(word.substr(0, 40)));
        const auto run = Run({word, L"x"});
        EXPECT_EQ(run.output, Output({"The command '" + Printed(word) + "' is unknown."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(BadInput, AsAPrinterNameIsNotFound) {
    for (const std::wstring& word : kOddWords) {
        SCOPED_TRACE(Printed(word.substr(0, 40)));
        const auto run = Run({L"/p", word, L"get", L"status"});
        EXPECT_EQ(run.output, Output({"The printer '" + Printed(word) + "' is not found.",
                                      "No printers selected for this operation."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(BadInput, AsAFieldIsInvalid) {
    for (const std::wstring& word : kOddWords) {
        SCOPED_TRACE(Printed(word.substr(0, 40)));
        const auto run = RunOnFirst({L"get", word});
        EXPECT_EQ(run.output, Framed("Get", {"Argument '" + Printed(word) + "' is invalid."}));
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(BadInput, AsAHelpTopicHasNoPage) {
    for (const std::wstring& word : kOddWords) {
        SCOPED_TRACE(Printed(word.substr(0, 40)));
        EXPECT_EQ(Run({L"help", word}).output,
                  Output({"No help exists for '" + Printed(word) + "' command."}));
    }
}

TEST_F(BadInput, AThousandWordsAreACommandAndItsArguments) {
    Words words{L"get", L"comment"};
    words.resize(1000, L"further");
    words.insert(words.end(), {L"/p", first.Name()});
    EXPECT_EQ(Run(words).output, Framed("Get", {firstName + ": Comment of " + firstName}));
}

TEST_F(BadInput, AThousandPrinterNamesAreEachLookedAt) {
    Words words{L"get", L"comment"};
    Lines expected;
    for (int index = 0; index < 500; ++index) {
        const std::wstring name = L"Nobody " + std::to_wstring(index);
        words.insert(words.end(), {L"/p", name});
        expected.push_back("The printer '" + Printed(name) + "' is not found.");
    }
    expected.push_back("No printers selected for this operation.");
    EXPECT_EQ(Run(words).output, Output(expected));
}

} // namespace
