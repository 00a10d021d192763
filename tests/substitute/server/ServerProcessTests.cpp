// When the server's process may end.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "substitute/base/Failure.h"
#include "substitute/objects/UseCount.h"
#include "substitute/server/ServerProcess.h"

using namespace kemba::substitute;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

/// Counts how often the classes were shown and hidden; each row of `whenHidden` is done once.
class FakeClasses final : public ClassOffer {
  public:
    void Show() override {
        ++shown;
        if (shown > successes) {
            throw Failure{E_FAIL, L"no"};
        }
        if (whenShown) {
            whenShown();
        }
    }
    void Hide() noexcept override {
        ++hidden;
        if (const auto work = std::exchange(whenHidden, nullptr)) {
            work();
        }
    }

    int successes = 1'000'000;
    int shown = 0;
    int hidden = 0;
    std::function<void()> whenShown;
    std::function<void()> whenHidden; ///< the first time only
};

struct ServerProcess : testing::Test {
    UseCount uses;
    FakeClasses classes;
};

TEST_F(ServerProcess, EndsAfterTheStartTimeWhenNobodyComes) {
    const auto begin = Clock::now();
    ServeUntilUnused(uses, classes, {.start = 200ms, .grace = 10min, .settle = 1ms});
    const auto passed = Clock::now() - begin;
    EXPECT_GE(passed, 200ms);
    EXPECT_LT(passed, 1min);
    EXPECT_EQ(classes.shown, 1);
    EXPECT_EQ(classes.hidden, 1);
    EXPECT_FALSE(uses.TryEnter());
    EXPECT_EQ(uses.Get(), UseCount::State{});
}

TEST_F(ServerProcess, WaitsForTheLastUseAndThenForTheGraceTime) {
    auto first = std::make_unique<Use>(uses);
    auto second = std::make_unique<Use>(uses);
    Clock::time_point lastEnd;
    std::thread client([&] {
        std::this_thread::sleep_for(50ms);
        first.reset();
        std::this_thread::sleep_for(250ms); // longer than start and grace time together
        lastEnd = Clock::now();
        second.reset();
    });
    ServeUntilUnused(uses, classes, {.start = 50ms, .grace = 150ms, .settle = 1ms});
    const auto end = Clock::now();
    client.join();
    EXPECT_GE(end - lastEnd, 150ms);
    EXPECT_LT(end - lastEnd, 1min);
}

TEST_F(ServerProcess, ANewUseWithinTheGraceTimeKeepsItAlive) {
    Clock::time_point lastEnd;
    std::thread client([&] {
        {
            const Use use(uses);
        }
        std::this_thread::sleep_for(50ms);
        const Use use(uses);
        std::this_thread::sleep_for(400ms); // the first use's grace time ends meanwhile
        lastEnd = Clock::now();
    });
    ServeUntilUnused(uses, classes, {.start = 10min, .grace = 300ms, .settle = 1ms});
    const auto end = Clock::now();
    client.join();
    EXPECT_GE(end - lastEnd, 300ms);
}

TEST_F(ServerProcess, WhoFoundTheClassesJustBeforeTheyWereHiddenIsServedAndTheyAreShownAnew) {
    std::unique_ptr<Use> late;
    classes.whenHidden = [&] { late = std::make_unique<Use>(uses); };
    classes.whenShown = [&] { late.reset(); };
    ServeUntilUnused(uses, classes, {.start = 1ms, .grace = 1ms, .settle = 1ms});
    EXPECT_EQ(classes.shown, 2);
    EXPECT_EQ(classes.hidden, 2);
}

TEST_F(ServerProcess, WhoComesAndGoesWhileTheClassesAreBeingHiddenDelaysTheEndToo) {
    classes.whenHidden = [&] { const Use use(uses); };
    ServeUntilUnused(uses, classes, {.start = 1ms, .grace = 1ms, .settle = 1ms});
    EXPECT_EQ(classes.shown, 2);
}

TEST_F(ServerProcess, ALateCallIsWaitedForAWhileAfterTheClassesAreHidden) {
    std::thread late;
    bool taken = false;
    classes.whenHidden = [&] {
        late = std::thread([&] {
            std::this_thread::sleep_for(20ms);
            taken = uses.TryEnter();
            if (taken) {
                uses.Leave();
            }
        });
    };
    ServeUntilUnused(uses, classes, {.start = 1ms, .grace = 1ms, .settle = 1s});
    late.join();
    EXPECT_TRUE(taken);
    EXPECT_EQ(classes.shown, 2);
}

TEST_F(ServerProcess, ClientsAreServedToTheEndEvenIfTheClassesCannotBeShownAnew) {
    std::thread client;
    Clock::time_point lastEnd;
    classes.successes = 1;
    classes.whenHidden = [&] {
        uses.Enter();
        client = std::thread([&] {
            std::this_thread::sleep_for(100ms);
            lastEnd = Clock::now();
            uses.Leave();
        });
    };
    ServeUntilUnused(uses, classes, {.start = 1ms, .grace = 1ms, .settle = 1ms});
    const auto end = Clock::now();
    client.join();
    EXPECT_GE(end, lastEnd);
    EXPECT_FALSE(uses.TryEnter());
}

TEST_F(ServerProcess, ClassesThatCannotBeShownAtTheBeginningAreAFailure) {
    classes.successes = 0;
    EXPECT_THROW(ServeUntilUnused(uses, classes, {.start = 1ms, .grace = 1ms, .settle = 1ms}), Failure);
}

} // namespace
