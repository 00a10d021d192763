// The source of the cases.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"

using namespace kit;

namespace {

std::vector<std::uint64_t> Draws(std::uint64_t seed, std::uint64_t number) {
    Case input(seed, number, false);
    std::vector<std::uint64_t> draws;
    std::generate_n(std::back_inserter(draws), 20, [&] { return input.Bits(); });
    return draws;
}

TEST(FuzzCase, DrawsDependOnSeedAndNumberAlone) {
    EXPECT_EQ(Draws(7, 11), Draws(7, 11));
    std::set<std::uint64_t> drawn;
    for (std::uint64_t number = 0; number < 50; ++number) {
        for (const std::uint64_t seed : {1, 2}) {
            for (const std::uint64_t draw : Draws(seed, number)) {
                EXPECT_TRUE(drawn.insert(draw).second) << "seed " << seed << ", case " << number;
            }
        }
    }
}

TEST(FuzzCase, TextsAreOfEveryLengthAndHoldNoZero) {
    std::set<std::size_t> lengths;
    std::set<unsigned> bytes;
    for (std::uint64_t number = 0; number < 10'000; ++number) {
        Case input(1, number, false);
        const std::string text = input.Text(100);
        lengths.insert(text.size());
        for (const char byte : text) {
            bytes.insert(static_cast<unsigned char>(byte));
        }
        EXPECT_EQ(input.WideText(100).find(L'\0'), std::wstring::npos);
    }
    EXPECT_EQ(lengths.size(), 101U);
    EXPECT_EQ(bytes.size(), 255U);
    EXPECT_FALSE(bytes.contains(0));
}

TEST(FuzzLiteral, StandsForTheTextInASource) {
    EXPECT_EQ(Literal(std::string_view("a\"b\\\0331\377\0?", 9)), R"("a\042b\134\0331\377\000\077")");
    EXPECT_EQ(Literal(std::wstring_view(L"a\xD83D"
                                        L"b\x00E9z\"")),
              R"(L"a\xD83D" L"b\x00E9z\x0022")");
}

/// Fails in the third case.
void FailsInTheThirdCase(Case& input) {
    input.Say([] { return "the input of case 3"; });
    EXPECT_NE(input.Number(), 2U);
}

/// Writes past a block in the third case.
void CrashesInTheThirdCase(Case& input) {
    input.Say([] { return "the input of the crash"; });
    const auto block = std::make_unique<char[]>(16);
    volatile std::size_t index = input.Number() == 2 ? 16 : 0;
    block[index] = 1; // one of the two beside the block is noticed at once, the other when it is freed
}

void GoesOnForEver(Case& input) {
    input.Say([] { return "the input without an end"; });
    for (;;) {
        Sleep(10);
    }
}

void LeaksInEveryCase(Case&) {
    static std::vector<void*> left;
    left.push_back(std::malloc(1));
}

/// Runs cases of a target that has the present test's name, and ends the process with 7 if it failed. A
/// process that is to say the input of a case looks for the target by that name; it takes the place of the
/// test.
void RunAndExit(void (*body)(Case&)) {
    RunCases(testing::UnitTest::GetInstance()->current_test_info()->name(), body, 5);
    if (!std::getenv("KEMBA_FUZZ_ONLY")) {
        std::exit(testing::Test::HasFailure() ? 7 : 0);
    }
}

TEST(Fuzz, AFailingCaseIsToldAndSaysItsInput) {
    if (std::getenv("KEMBA_FUZZ_ONLY")) {
        RunAndExit(FailsInTheThirdCase);
        return;
    }
    EXPECT_EXIT(RunAndExit(FailsInTheThirdCase), testing::ExitedWithCode(7),
                "fuzz: target AFailingCaseIsToldAndSaysItsInput, seed .*, case 2 ");
    EXPECT_EXIT(RunAndExit(FailsInTheThirdCase), testing::ExitedWithCode(7), "the input of case 3");
}

TEST(Fuzz, ACrashIsToldAndSaysItsInput) {
    if (std::getenv("KEMBA_FUZZ_ONLY")) {
        RunAndExit(CrashesInTheThirdCase);
        return;
    }
    EXPECT_EXIT(RunAndExit(CrashesInTheThirdCase), testing::ExitedWithCode(3),
                "fuzz: target ACrashIsToldAndSaysItsInput, seed .*, case 2 ");
    EXPECT_EXIT(RunAndExit(CrashesInTheThirdCase), testing::ExitedWithCode(3), "the input of the crash");
}

TEST(Fuzz, ACaseWithoutAnEndIsToldAndSaysItsInput) {
    if (std::getenv("KEMBA_FUZZ_ONLY")) {
        RunAndExit(GoesOnForEver);
        return;
    }
    _putenv_s("KEMBA_FUZZ_PATIENCE", "1");
    EXPECT_EXIT(RunAndExit(GoesOnForEver), testing::ExitedWithCode(3), "the input without an end");
}

TEST(FuzzRunDeathTest, ACaseThatLeavesMemoryFails) {
    EXPECT_EXIT(RunAndExit(LeaksInEveryCase), testing::ExitedWithCode(7), "case 0 ");
    const std::uint64_t taken = GuardedHeap::Taken();
    const GuardedHeap guarded;
    const auto left = std::make_unique<char[]>(3);
    EXPECT_EQ(GuardedHeap::ListSince(taken), "\n  3 bytes: 00 00 00");
    EXPECT_EQ(GuardedHeap::ListSince(taken + 1), "");
}

} // namespace
