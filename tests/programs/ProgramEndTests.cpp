// Programs that cannot go on end at once, with one status and without a word.
#include <gtest/gtest.h>

#include <string>

#include "core/ProgramEnd.h"
#include "tests/kit/ProcessRun.h"

using namespace kit;

namespace {

ProcessResult RunWith(const std::wstring& word) {
    const ProcessResult run = RunProgram(L"ended-program.exe", {word});
    EXPECT_FALSE(run.timedOut);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    return run;
}

TEST(ProgramEnd, IsTheSameForEveryWayThere) {
    for (const wchar_t* const word : {L"throw", L"noexcept", L"terminate", L"abort", L"overflow"}) {
        SCOPED_TRACE(testing::Message() << word);
        EXPECT_EQ(RunWith(word).status, OCore::kAbnormalEnd);
    }
}

TEST(ProgramEnd, ComesWhenTheRuntimesOwnMemoryCannotBeHad) {
    EXPECT_EQ(RunWith(L"zeroed").status, OCore::kAbnormalEnd);
}

TEST(ProgramEnd, ComesForEveryAllocationBeforeTheProgramBegins) {
    EXPECT_EQ(RunWith(L"early").status, OCore::kAbnormalEnd);
}

TEST(ProgramEnd, DoesNotComeForAnAllocationThatIsLookedAt) {
    EXPECT_EQ(RunWith(L"malloc").status, 0U);
    EXPECT_EQ(RunWith(L"nothing").status, 0U);
}

} // namespace
