// Many clients at once on many printers: no failure, no object left, and no more memory than marshalling
// takes.
#include <gtest/gtest.h>

#include <windows.h>

#include <DriverAutomation.h>
#include <psapi.h>

#include <chrono>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "automation/Activation.h"
#include "demo/WinePrinters.h"
#include "tests/programs/Kemba.h"
#include "tests/substitute/ServerProgram.h"

namespace {

using namespace std::chrono_literals;
using programs::Framed;
using programs::Kemba;
using programs::Printed;

constexpr int kClients = 8;
constexpr int kCommands = 200;
constexpr int kPrinters = 20;

std::size_t WorkingSet(DWORD processId) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(GetProcessMemoryInfo(process, &counters, sizeof(counters)));
    CloseHandle(process);
    return counters.WorkingSetSize;
}

/// Lets all clients run the same number of commands at once; every one must succeed.
void RunClients(int commands, const std::vector<std::wstring>& printers) {
    std::vector<std::wstring> words{std::to_wstring(commands)};
    words.insert(words.end(), printers.begin(), printers.end());
    kit::ProcessOptions options;
    options.timeout = 100s;
    std::vector<std::future<kit::ProcessResult>> clients;
    for (int client = 0; client < kClients; ++client) {
        clients.push_back(std::async(std::launch::async,
                                     [&] { return kit::RunProgram(L"load-client.exe", words, options); }));
    }
    for (auto& client : clients) {
        const kit::ProcessResult result = client.get();
        EXPECT_FALSE(result.timedOut);
        EXPECT_EQ(result.status, 0U) << result.errors;
    }
}

TEST(ServerUnderLoad, ServesManyClientsWithoutAFailureAndLeavesNothing) {
    std::vector<std::unique_ptr<demo::Printer>> printers;
    std::vector<std::wstring> names;
    for (int index = 0; index < kPrinters; ++index) {
        printers.push_back(std::make_unique<demo::Printer>());
        names.push_back(printers.back()->Name());
    }
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    {
        // One object of ours keeps the server alive, so that its memory can be compared.
        const auto held = kemba::Activate<VersionInformation, IVersionInformation>();
        ASSERT_EQ(RunningServers().size(), 1U);
        const DWORD server = RunningServers().front();
        RunClients(10, names); // what is loaded and cached once is there
        std::this_thread::sleep_for(1s);
        const std::size_t before = WorkingSet(server);
        RunClients(kCommands, names);
        std::this_thread::sleep_for(1s);
        const std::size_t after = WorkingSet(server);
        std::printf("server's working set: %zu KB before, %zu KB after %d clients with %d commands each\n",
                    before / 1024, after / 1024, kClients, kCommands);
        // The server's own objects leave nothing (ServerMemory tells, in one process); Wine's marshalling
        // keeps some 2 KB for every object that crosses.
        EXPECT_LT(after, before + kClients * kCommands * std::size_t{4096});
    }
    CoUninitialize();
    // With its last object gone the server goes too: none was left behind.
    for (int tenths = 0; !RunningServers().empty() && tenths < 200; ++tenths) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_EQ(RunningServers().size(), 0U);
}

/// Wine does not give back what a dead client held, so that the server stays: nothing may come after this
/// test.
TEST(ServerLastTest, AClientThatDiesInTheMiddleHurtsNoOther) {
    const demo::Printer printer(
        {.port = L"LPT1:", .comment = L"by the door", .location = L"", .shareName = L"", .attributes = 0});
    kit::ProcessOptions shortLived;
    shortLived.timeout = 2s; // then it is ended, somewhere in its thousands of calls
    EXPECT_TRUE(kit::RunProgram(L"load-client.exe", {L"100000", printer.Name()}, shortLived).timedOut);
    const kit::ProcessResult run = Kemba({L"/p", printer.Name(), L"get", L"comment"});
    EXPECT_EQ(run.output, Framed("Get", Printed(printer.Name()) + ": by the door\r\n"));
    for (const DWORD server : RunningServers()) {
        const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, server);
        EXPECT_TRUE(TerminateProcess(process, 1));
        CloseHandle(process);
    }
}

} // namespace
