// Which tests are run where.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/acceptance/Checks.h"
#include "tests/acceptance/Plan.h"
#include "tests/acceptance/TestOutput.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/ProcessRun.h"

using namespace acceptance;

namespace {

constexpr Part kPart{.program = L"x.exe", .tests = "*", .withoutAdministrator = "Few.*", .onWine = "Quick.*"};
constexpr Part kCodePage{
    .program = L"x.exe", .tests = "*", .withoutAdministrator = "", .onWine = "", .codePage = 932};

void ExpectSelection(const Part& part, const Machine& machine, const std::string& run,
                     const std::string& reason) {
    const Selection selection = SelectTests(part, machine);
    EXPECT_EQ(selection.run, run);
    EXPECT_EQ(selection.reason, reason);
}

TEST(AcceptancePlan, AnAdministratorOnWindowsRunsAll) {
    ExpectSelection(kPart, {.isAdministrator = true, .codePage = 1252}, "*", "");
}

TEST(AcceptancePlan, OthersRunWhatNeedsNoAdministrator) {
    ExpectSelection(kPart, {.codePage = 1252}, "Few.*", "needs an administrator");
}

TEST(AcceptancePlan, OnWineTheQuickOnesAreRun) {
    ExpectSelection(kPart, {.isWine = true, .isAdministrator = true, .codePage = 1252}, "Quick.*", "");
}

TEST(AcceptancePlan, ACodePagesTestsAreRunUnderItAlone) {
    ExpectSelection(kCodePage, {.isAdministrator = true, .codePage = 1252}, "",
                    "the system's code page is 1252, not 932");
    ExpectSelection(kCodePage, {.isAdministrator = true, .codePage = 932}, "*", "");
    ExpectSelection(kCodePage, {.codePage = 932}, "", "needs an administrator");
}

/// The tests that the program has of a filter's.
std::size_t CountTests(const Part& part, const std::string& filter) {
    return ReadTestList(
               kit::RunProgram(part.program, {L"--gtest_list_tests", kit::Wide("--gtest_filter=" + filter)})
                   .output)
        .size();
}

TEST(AcceptancePlan, EveryFilterFindsTestsInItsProgram) {
    for (const Part& part : Parts()) {
        for (std::string filters : {part.tests, part.withoutAdministrator, part.onWine}) {
            while (!filters.empty()) {
                const std::string filter = filters.substr(0, filters.find(':'));
                EXPECT_GT(CountTests(part, filter), 0U) << kit::Narrow(part.program) << " " << filter;
                filters.erase(0, filter.size() + 1);
            }
        }
    }
}

TEST(AcceptancePlan, WhatWineLacksIsTriedThere) {
    for (const WineGap& gap : WineGaps()) {
        std::size_t found = 0;
        for (const Part& part : Parts()) {
            found += *part.onWine == '\0' ? 0 : CountTests(part, gap.name);
        }
        EXPECT_EQ(found, 1U) << gap.name;
    }
}

} // namespace
