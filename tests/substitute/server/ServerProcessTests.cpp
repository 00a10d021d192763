// When the server's process may end.
#include "substitute/server/ServerProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

namespace {

using kemba::substitute::ServerProcess;
using kemba::substitute::ServerUse;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(ServerProcess, EndsAfterTheStartTimeWhenNobodyComes) {
    ServerProcess process;
    const auto begin = Clock::now();
    process.WaitUntilUnused(300, 1);
    EXPECT_GE(Clock::now() - begin, 250ms);
}

TEST(ServerProcess, WaitsForTheLastUseAndThenForTheGraceTime) {
    ServerProcess process;
    auto first = std::make_unique<ServerUse>(process);
    auto second = std::make_unique<ServerUse>(process);
    Clock::time_point lastEnd;
    std::thread client([&] {
        std::this_thread::sleep_for(200ms);
        first.reset();
        std::this_thread::sleep_for(400ms); // longer than start and grace time together
        lastEnd = Clock::now();
        second.reset();
    });
    process.WaitUntilUnused(50, 150);
    const auto end = Clock::now();
    client.join();
    EXPECT_GE(end - lastEnd, 100ms);
}

TEST(ServerProcess, ANewUseWithinTheGraceTimeKeepsItAlive) {
    ServerProcess process;
    Clock::time_point lastEnd;
    std::thread client([&] {
        { const ServerUse use(process); }
        std::this_thread::sleep_for(100ms);
        const ServerUse use(process);
        std::this_thread::sleep_for(600ms); // the first use's grace time ends meanwhile
        lastEnd = Clock::now();
    });
    process.WaitUntilUnused(5'000, 300);
    const auto end = Clock::now();
    client.join();
    EXPECT_GE(end - lastEnd, 200ms);
}

} // namespace
