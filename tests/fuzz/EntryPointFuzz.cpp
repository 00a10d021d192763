// Whole runs through the entry point, on a scripted server that fails at random, and on made-up printers.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/fuzz/CommandLineModel.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/fuzz/MadePrinters.h"
#include "tests/fuzz/TextModel.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/Script.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

const Words& TheWords() {
    static const Words words = [] {
        const OrdinaryHeap ordinary;
        return Words{L"settings", L"help",      L"action",   L"send",      L"version", L"queue",   L"get",
                     L"set",      L"import",    L"export",   L"reset",     L"status",  L"comment", L"pause",
                     L"purge",    L"resume",    L"driver",   L"os",        L"test",    L"feed",    L"-n",
                     L"file.prn", L"interface", L"location", L"sharename", L"commands"};
    }();
    return words;
}

/// Lets some of the server's operations fail.
void Script(Case& input, FakeServer& server) {
    constexpr HRESULT kStatuses[] = {E_FAIL, E_ACCESSDENIED, E_NOTIMPL, E_POINTER,
                                     HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)};
    for (std::size_t left = input.Below(4); left > 0; --left) {
        const Operation& operation = input.OneOf(AllOperations());
        const HRESULT status = input.OneOf(kStatuses);
        const bool withWords = input.OnceIn(2);
        const std::wstring words = input.WideText(60);
        input.Say([&] { return std::string(operation.name) + " answers " + std::to_string(status); });
        Rule& rule = server.Fail(operation.name, status);
        if (withWords) {
            rule.WithInformation(L"Driver", words);
        }
    }
}

/// What must hold whatever the words are.
void Look(const RunResult& run, const ParsedModel& parsed) {
    EXPECT_GE(run.status, 0);
    EXPECT_LE(run.status, 2);
    EXPECT_EQ(run.status == 1, !parsed.goesOn);
    if (!parsed.goesOn || parsed.quiet) {
        EXPECT_EQ(run.output, "");
        return;
    }
    const std::wstring word = parsed.left.empty() ? std::wstring() : parsed.left.front();
    // A driver that does not tell its version ends that command without a word.
    if (!run.output.empty() || run.status != 2 || !IsSameWord(word, L"version")) {
        EXPECT_EQ(run.output.substr(std::max<std::size_t>(run.output.size(), 2) - 2), "\r\n");
    }
    constexpr const wchar_t* kCommands[] = {L"settings", L"help",  L"?",   L"action", L"send",
                                            L"version",  L"queue", L"get", L"set"};
    const bool known = std::any_of(std::begin(kCommands), std::end(kCommands),
                                   [&](const wchar_t* command) { return IsSameWord(word, command); });
    if (!known) {
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, parsed.left.empty()
                                  ? std::string("Error: No command specified.\r\n")
                                  : NarrowOf(L"The command '" + word + L"' is unknown.\r\n", kAnsi));
    } else if (IsSameWord(word, L"help") || word == L"?") {
        EXPECT_EQ(run.status, 0);
    }
}

void WholeRunsCase(Case& input) {
    if (input.Number() % 64 != 0 && input.Number() > 1000) {
        return; // a run of this kind takes some milliseconds
    }
    const AlignedBlocks aligned;
    const MadePrinters made(input);
    Words words = DrawWords(input, TheWords());
    if (words.empty()) {
        return;
    }
    input.Say([&] { return "RunAfresh(" + Literal(words) + ");"; });
    RunResult run;
    {
        FakeServer server;
        Script(input, server);
        run = RunAfresh(words);
        EXPECT_EQ(server.Faults(), Lines{});
    }
    Look(run, ParsedByModel(words));
}

TEST(Fuzz, WholeRuns) {
    // The blocks of a run are not counted: the process's objects keep theirs until the next run, the scripted
    // server some of its own. What the server gave out is looked at instead.
    RunCases("WholeRuns", WholeRunsCase, 40, Leftovers::Any);
}

} // namespace
