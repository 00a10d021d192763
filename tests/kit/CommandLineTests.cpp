// Quoting of words: the written form. What a program reads back is tested with started programs.
#include <gtest/gtest.h>

#include <string>

#include "tests/kit/CommandLine.h"

using namespace kit;

namespace {

TEST(CommandLine, EachWordIsQuotedByTheRulesOfTheCRuntime) {
    const struct {
        std::wstring word;
        std::wstring quoted;
    } rows[] = {
        {L"get", L"get"},
        {L"", LR"("")"},
        {L"Label A", LR"("Label A")"},
        {L"a\tb", L"\"a\tb\""},
        {LR"(c:\folder\file)", LR"(c:\folder\file)"},
        {LR"(c:\folder\)", LR"(c:\folder\)"},
        {LR"(c:\my folder\)", LR"("c:\my folder\\")"},
        {LR"(c:\my folder\x)", LR"("c:\my folder\x")"},
        {LR"(say "hello")", LR"("say \"hello\"")"},
        {LR"(")", LR"("\"")"},
        {LR"(\")", LR"("\\\"")"},
        {LR"(\\ ")", LR"("\\ \"")"},
    };
    for (const auto& [word, quoted] : rows) {
        SCOPED_TRACE(testing::PrintToString(word));
        EXPECT_EQ(QuoteWord(word), quoted);
    }
}

TEST(CommandLine, WordsStandWithABlankBetween) {
    EXPECT_EQ(MakeCommandLine({L"/p", L"Label A", L"", L"get"}), LR"(/p "Label A" "" get)");
    EXPECT_EQ(MakeCommandLine({}), L"");
}

} // namespace
