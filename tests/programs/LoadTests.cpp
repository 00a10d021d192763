// Many clients at once on many printers: no failure, no object left, and no more memory than marshalling
// takes.
#include <windows.h>
#include <objbase.h>
#include <psapi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "demo/Printers.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/programs/Clients.h"
#include "tests/programs/HeldServer.h"
#include "tests/programs/Kemba.h"
#include "tests/programs/ServerProgram.h"

using namespace kit;
using namespace std::chrono_literals;

namespace {

constexpr int kClients = 8;
constexpr int kCommands = 40;                                            // of each client in a round
constexpr int kRounds = 8;                                               // at most
constexpr std::size_t kBound = kClients * kCommands * std::size_t{2048}; // bytes that a round may leave
constexpr int kPrinters = 20;

std::size_t WorkingSet(const HeldServer& server) {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(GetProcessMemoryInfo(server.Process(), &counters, sizeof(counters)));
    return counters.WorkingSetSize;
}

/// Lets all clients run the same number of commands at once; every one must succeed.
void RunClients(int commands, const std::vector<std::wstring>& printers, HeldServer& server) {
    std::vector<std::wstring> words{std::to_wstring(commands)};
    words.insert(words.end(), printers.begin(), printers.end());
    Clients clients;
    for (int client = 0; client < kClients; ++client) {
        clients.Start(L"load-client.exe", words);
    }
    bool allAnswered = true;
    for (const ProcessResult& result : clients.Finish(60s)) {
        allAnswered = allAnswered && !result.timedOut;
        EXPECT_EQ(result.status, 0U) << result.output;
    }
    if (!allAnswered) {
        server.End(); // whoever asks it now waits as long
        FAIL() << "clients waited in vain for an answer";
    }
}

TEST(ServerUnderLoad, ServesManyClientsWithoutAFailureAndLeavesNothing) {
    std::vector<std::unique_ptr<demo::Printer>> printers;
    std::vector<std::wstring> names;
    for (int index = 0; index < kPrinters; ++index) {
        printers.push_back(std::make_unique<demo::Printer>());
        names.push_back(printers.back()->Name());
    }
    {
        const Apartment apartment;
        HeldServer server(names.front(), 200s);
        RunClients(10, names, server); // what is loaded and cached once is there
        // What the server's own objects leave would show in every round (ServerMemory looks for it block by
        // block, in one process). Wine's heaps and threads now and then take some megabytes at once, so the
        // first round that leaves nothing decides.
        std::size_t least = static_cast<std::size_t>(-1);
        for (int round = 0; round < kRounds && least >= kBound && !testing::Test::HasFatalFailure();
             ++round) {
            const std::size_t before = WorkingSet(server);
            RunClients(kCommands, names, server);
            const std::size_t after = WorkingSet(server);
            std::printf(
                "server's working set: %zu KB before, %zu KB after %d clients with %d commands each\n",
                before / 1024, after / 1024, kClients, kCommands);
            least = std::min(least, after > before ? after - before : 0);
        }
        EXPECT_LT(least, kBound);
        EXPECT_TRUE(server.IsStillTheOne());
    }
    // With its last object gone the server goes too: none was left behind.
    for (int tenths = 0; !RunningServers().empty() && tenths < 450; ++tenths) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_EQ(RunningServers().size(), 0U);
}

/// Wine does not give back what a dead client held, so that the server stays: nothing may come after this
/// test.
TEST(ServerLast, AClientThatDiesInTheMiddleHurtsNoOther) {
    const demo::Printer printer(
        {.port = L"LPT1:", .comment = L"by the door", .location = L"", .shareName = L"", .attributes = 0});
    ProcessOptions shortLived;
    shortLived.timeout = 2s; // then it is ended, somewhere in its thousands of calls
    EXPECT_TRUE(RunProgram(L"load-client.exe", {L"100000", printer.Name()}, shortLived).timedOut);
    const ProcessResult run = Kemba({L"/p", printer.Name(), L"get", L"comment"});
    EXPECT_EQ(run.output, Framed("Get", {Printed(printer.Name()) + ": by the door"}));
    for (const DWORD server : RunningServers()) {
        const UniqueHandle process(OpenProcess(PROCESS_TERMINATE, FALSE, server));
        EXPECT_TRUE(TerminateProcess(process.get(), 1));
    }
}

} // namespace
