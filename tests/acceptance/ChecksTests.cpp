// What the outcomes of checks mean.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/acceptance/Checks.h"

using namespace acceptance;

namespace {

using Checks = std::vector<Check>;

constexpr auto kPassed = Outcome::Passed;
constexpr auto kFailed = Outcome::Failed;
constexpr auto kNotOffered = Outcome::NotOffered;

Outcome HeldTo(const Check& check, const std::vector<WineGap>& gaps) {
    const Check held = HoldToGaps(check, gaps);
    EXPECT_EQ(held.name, check.name);
    return held.outcome;
}

TEST(WineGaps, WhatIsListedIsNotOfferedForTheReasonOfTheList) {
    EXPECT_EQ(HeldTo({"A.B", kNotOffered, "no queue"}, {{"A.B", "no queue"}}), kNotOffered);
    EXPECT_EQ(HeldTo({"A.B", kNotOffered, "no printer"}, {{"A.B", "no queue"}}), kFailed);
    EXPECT_EQ(HeldTo({"A.B", kPassed, ""}, {{"A.B", "no queue"}}), kFailed);
    EXPECT_EQ(HeldTo({"A.B", kFailed, "it broke"}, {{"A.B", "no queue"}}), kFailed);
}

TEST(WineGaps, WhatIsNotListedIsOffered) {
    EXPECT_EQ(HeldTo({"A.B", kPassed, ""}, {}), kPassed);
    EXPECT_EQ(HeldTo({"A.B", kNotOffered, "no queue"}, {}), kFailed);
}

TEST(WineGaps, WhatIsListedIsTried) {
    const std::vector<WineGap> gaps = {{"A.B", "no queue"}, {"A.C", "no queue"}};
    const Checks untried = UntriedGaps(Checks{{"A.B", kNotOffered, "no queue"}}, gaps);
    ASSERT_EQ(untried.size(), 1U);
    EXPECT_EQ(untried.front().name, "A.C");
    EXPECT_EQ(untried.front().outcome, kFailed);
}

TEST(WineGaps, EachHasAReasonAndIsThereOnce) {
    std::set<std::string> names;
    for (const WineGap& gap : WineGaps()) {
        EXPECT_TRUE(names.insert(gap.name).second) << gap.name;
        EXPECT_FALSE(gap.reason.empty()) << gap.name;
    }
}

TEST(VerdictOfARun, IsGoodOnlyWhenSomethingPassedAndNothingFailed) {
    const struct {
        Checks checks;
        int status;
        std::string line;
    } rows[] = {
        {{{"A", kPassed}, {"B", kPassed}, {"C", kNotOffered}},
         0,
         "PASSED: 2 passed, 0 failed, 1 not offered here"},
        {{{"A", kPassed}, {"B", kFailed}}, 1, "FAILED: 1 passed, 1 failed, 0 not offered here"},
        {{{"A", kNotOffered}}, 1, "FAILED, for nothing was checked: 0 passed, 0 failed, 1 not offered here"},
        {{}, 1, "FAILED, for nothing was checked: 0 passed, 0 failed, 0 not offered here"},
    };
    for (const auto& row : rows) {
        const Verdict verdict = Judge(row.checks);
        EXPECT_EQ(verdict.status, row.status) << row.line;
        EXPECT_EQ(verdict.line, row.line);
    }
}

TEST(ReportOfACheck, HasALineForAllAndMoreForAFailure) {
    EXPECT_EQ(ReportOf({"A.B", kPassed, "it said something"}), "passed            A.B");
    EXPECT_EQ(ReportOf({"A.B", kNotOffered, "needs an administrator"}),
              "not offered here  A.B: needs an administrator");
    EXPECT_EQ(ReportOf({"A.B", kFailed, "one\ntwo"}), "FAILED            A.B\n    one\n    two");
    EXPECT_EQ(ReportOf({"A.B", kFailed, ""}), "FAILED            A.B");
}

} // namespace
