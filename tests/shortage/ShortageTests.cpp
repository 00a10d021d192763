// The sweep: for every command line each allocation fails, once and for good.
//
// A seeded tenth of the points is tried; all of them where KEMBA_SHORTAGE_ALL is set. KEMBA_SHORTAGE_SEED
// picks another tenth.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cwchar>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "cli/Dispatcher.h"
#include "commands/CommandTable.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Printed.h"
#include "tests/shortage/CommandLines.h"
#include "tests/shortage/Run.h"
#include "tests/shortage/Verdict.h"

using namespace kit;

namespace {

constexpr const char* kWrongNames[] = {
    "right",      "hung",         "crashed",      "words on standard error",
    "wrong work", "wrong status", "wrong output", "not given back"};

/// Of so many runs in a process that makes many, one is made in a process of its own too.
constexpr std::size_t kComparedOneIn = 256;

/// What a caller and the server see of a run.
std::string Seen(const Outcome& run) {
    std::string seen =
        "status " + std::to_string(run.status) + ", refused: " + run.refusedCall + "\n" + run.output;
    for (const std::string& call : run.calls) {
        seen += call + "\n";
    }
    return seen;
}

class Shortage : public testing::TestWithParam<CommandLine> {
  protected:
    /// The ordinary ways to end: undisturbed, and with each argument of a call refused.
    std::vector<Outcome> SpecifiedWays() const {
        std::vector<Outcome> ways{RunShort(words, {}, line.failing)};
        for (const RefusedArgument& argument : ArgumentsOf(ways.front())) {
            // Beside what fails anyway, and winning over it.
            const std::string failing =
                line.failing + std::string(*line.failing ? ";" : "") + argument.failing;
            ways.push_back(WithoutCall(RunShort(words, {}, failing), argument.call));
        }
        return ways;
    }

    /// Whether the point is among those that are tried.
    bool IsChosen(const Point& point) const {
        static const bool all = !EnvironmentVariable(L"KEMBA_SHORTAGE_ALL").empty();
        static const std::wstring seed = EnvironmentVariable(L"KEMBA_SHORTAGE_SEED");
        std::uint32_t hash = 2166136261; // FNV-1a
        const std::string text = line.name + point.Text() + std::string(seed.begin(), seed.end());
        for (const char each : text) {
            hash = (hash ^ static_cast<unsigned char>(each)) * 16777619;
        }
        return all || hash % 10 == 0;
    }

    /// Judges the run and counts it.
    void Check(const Point& point, const Outcome& run, const std::vector<Outcome>& ways) {
        Verdict verdict = Judge(run, ways, line.handling);
        if (run.refusedCall.empty()) {
            verdict = {Wrong::WrongStatus, "the allocation was never asked for"};
        }
        ++tried;
        ++counts[static_cast<std::size_t>(verdict.wrong)];
        EXPECT_EQ(verdict.wrong, Wrong::Nothing)
            << verdict.reason << "\nstatus " << run.status << ", " << run.refusedCall << " refused, output:\n"
            << run.output << "repeat: " << Repetition(words, point, line.failing);
    }

    const CommandLine& line = GetParam();
    const Words words = line.GetWords();
    int tried = 0;
    std::array<int, std::size(kWrongNames)> counts{};
};

TEST_P(Shortage, EndsAsSpecifiedOrAtOnceWithAStatus) {
    const std::vector<Outcome> ways = SpecifiedWays();
    const Outcome& undisturbed = ways.front();
    for (const Outcome& way : ways) {
        ASSERT_TRUE(way.isComplete);
        EXPECT_EQ(way.faults, std::vector<std::string>{});
        EXPECT_EQ(way.errors, "");
    }
    ASSERT_EQ(undisturbed.status, line.status) << undisturbed.output;
    ASSERT_GT(undisturbed.allocations, 0);

    // Runs in a process that makes many are held against some in processes of their own.
    std::vector<Point> repeated;
    std::vector<Point> alone;
    for (long first = 1; first <= undisturbed.allocations; ++first) {
        const bool isWithinProgram =
            first > undisturbed.allocationsAtStart && first <= undisturbed.allocationsAtReturn;
        for (const bool lasts : {false, true}) {
            const Point point{first, lasts};
            if (!IsChosen(point)) {
                continue;
            }
            (isWithinProgram ? repeated : alone).push_back(point);
            if (isWithinProgram && repeated.size() % kComparedOneIn == 1) {
                alone.push_back(point);
            }
        }
    }
    const std::vector<Outcome> outcomes = RunAllShort(words, repeated, line.failing);
    for (std::size_t index = 0; index < repeated.size(); ++index) {
        Check(repeated[index], outcomes[index], ways);
    }
    for (const Point& point : alone) {
        const Outcome run = RunShort(words, point, line.failing);
        const auto same = std::ranges::find(repeated, point);
        if (same == repeated.end()) {
            Check(point, run, ways);
        } else {
            EXPECT_EQ(Seen(run), Seen(outcomes[static_cast<std::size_t>(same - repeated.begin())]))
                << "repeat: " << Repetition(words, point, line.failing);
        }
    }
    std::cout << line.name << ": " << tried << " of " << 2 * undisturbed.allocations << " points";
    for (std::size_t wrong = 1; wrong < counts.size(); ++wrong) {
        if (counts[wrong] > 0) {
            std::cout << ", " << counts[wrong] << " " << kWrongNames[wrong];
        }
    }
    std::cout << "\n";
}

TEST(ShortageCommandLines, HaveEveryCommandWord) {
    for (const kemba::CommandRow& row : kemba::TheCommands()) {
        EXPECT_TRUE(!row.word ||
                    std::ranges::any_of(AllCommandLines(),
                                        [&](const CommandLine& line) {
                                            return std::ranges::any_of(line.words, [&](const wchar_t* word) {
                                                return std::wcscmp(word, row.word) == 0;
                                            });
                                        }))
            << "no command line in tests/shortage/CommandLines.cpp has the word "
            << OString(row.word).Narrow();
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Shortage, testing::ValuesIn(AllCommandLines()),
                         [](const testing::TestParamInfo<CommandLine>& each) { return each.param.name; });

} // namespace
