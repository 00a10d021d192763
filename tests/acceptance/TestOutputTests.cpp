// Reading what test programs print.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/acceptance/Checks.h"
#include "tests/acceptance/TestOutput.h"

using namespace acceptance;

namespace {

using Names = std::vector<std::string>;
using Checks = std::vector<Check>;

TEST(TestOutput, TheListNamesEveryTestWithItsSuite) {
    EXPECT_EQ(ReadTestList("Running main() from gtest_main.cc\r\nSuite.\r\n  First\r\n  Second\r\n"
                           "In/Row.  # TypeParam = int\r\n  Reads/One  # GetParam() = 1\r\n"),
              (Names{"Suite.First", "Suite.Second", "In/Row.Reads/One"}));
    EXPECT_EQ(ReadTestList(""), Names{});
}

TEST(TestOutput, EveryTestHasItsOutcomeAndWhatItSaid) {
    EXPECT_EQ(ReadTestOutput(
                  "[==========] Running 3 tests from 1 test suite.\r\n"
                  "[ RUN      ] Suite.Passes\r\nit says something\r\n[       OK ] Suite.Passes (3 ms)\r\n"
                  "[ RUN      ] In/Suite.Fails/1\r\nfile.cpp:7: Failure\r\n  1\r\n"
                  "[  FAILED  ] In/Suite.Fails/1, where GetParam() = 1 (2 ms)\r\n"
                  "[ RUN      ] Suite.Skips\r\nfile.cpp:9: Skipped\r\nno device\r\n\r\n"
                  "[  SKIPPED ] Suite.Skips (0 ms)\r\n"
                  "[  PASSED  ] 1 test.\r\n[  FAILED  ] 1 test, listed below:\r\n"
                  "[  FAILED  ] In/Suite.Fails/1, where GetParam() = 1\r\n",
                  "over"),
              (Checks{{"Suite.Passes", Outcome::Passed, "it says something"},
                      {"In/Suite.Fails/1", Outcome::Failed, "file.cpp:7: Failure\n  1"},
                      {"Suite.Skips", Outcome::NotOffered, "no device"}}));
}

TEST(TestOutput, ATestWithoutAnEndHasFailed) {
    EXPECT_EQ(ReadTestOutput(
                  "[ RUN      ] Suite.One\n[       OK ] Suite.One (3 ms)\n[ RUN      ] Suite.Two\nsaid\n",
                  "status 5"),
              (Checks{{"Suite.One", Outcome::Passed, ""}, {"Suite.Two", Outcome::Failed, "said\nstatus 5"}}));
    EXPECT_EQ(ReadTestOutput("[ RUN      ] Suite.Two", "status 5"),
              (Checks{{"Suite.Two", Outcome::Failed, "status 5"}}));
}

TEST(TestOutput, NothingBegunIsNothing) {
    EXPECT_EQ(ReadTestOutput("", "status 5"), Checks{});
    EXPECT_EQ(ReadTestOutput("[       OK ] Suite.One (3 ms)\n", "status 5"), Checks{});
}

} // namespace
