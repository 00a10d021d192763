// Runs inside the test process: words, status, bytes of standard output.
#include <fcntl.h>
#include <io.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/kit/StdoutCapture.h"
#include "tests/kit/WholeRun.h"

using namespace kit;

namespace {

std::vector<std::wstring> g_seenWords;

int KeepWords(int count, wchar_t* words[]) {
    g_seenWords.assign(words, words + count);
    return words[count] ? -1 : count;
}

/// The mode of standard output; asking leaves it as it was.
int ModeOfOutput() {
    const int mode = _setmode(1, _O_BINARY);
    _setmode(1, mode);
    return mode;
}

TEST(WholeRun, TheEntryPointGetsTheProgramPathAndTheWords) {
    const RunResult result = RunWords(KeepWords, {L"/p", L"Label A", L""});
    EXPECT_EQ(g_seenWords, (std::vector<std::wstring>{L"kemba", L"/p", L"Label A", L""}));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.output, "");
}

TEST(WholeRun, EveryByteIsCapturedZerosIncluded) {
    const auto result = RunWords(
        [](int, wchar_t**) {
            std::fwrite("a\0b\xFF", 1, 4, stdout);
            std::cout << "stream";
            return 0;
        },
        {});
    EXPECT_EQ(result.output, std::string("a\0b\xFFstream", 10));
}

TEST(WholeRun, ATextModeStreamShowsTheLineEndsThatItWouldWrite) {
    const auto write = [](int, wchar_t**) { return std::fputs("x\ny\r\n", stdout); };
    _setmode(1, _O_TEXT);
    EXPECT_EQ(RunWords(write, {}).output, "x\r\ny\r\r\n");
    _setmode(1, _O_BINARY);
    const std::string binary = RunWords(write, {}).output;
    _setmode(1, _O_TEXT);
    EXPECT_EQ(binary, "x\ny\r\n");
}

TEST(WholeRun, AModeThatTheRunChangedIsPutBack) {
    _setmode(1, _O_TEXT);
    const auto result = RunWords(
        [](int, wchar_t**) {
            _setmode(1, _O_BINARY);
            return std::fputs("x\n", stdout);
        },
        {});
    EXPECT_EQ(result.output, "x\n");
    EXPECT_EQ(ModeOfOutput(), _O_TEXT);
}

TEST(WholeRun, NothingOfOneRunReachesTheNext) {
    const auto write = [](int, wchar_t**) {
        std::fputs("once", stdout);
        return 0;
    };
    EXPECT_EQ(RunWords(write, {}).output, "once");
    EXPECT_EQ(RunWords(write, {}).output, "once");
}

TEST(WholeRun, AnExceptionComesThroughAndEndsTheCapture) {
    EXPECT_THROW(RunWords([](int, wchar_t**) -> int { throw std::runtime_error("gone"); }, {}),
                 std::runtime_error);
    StdoutCapture capture;
    std::fputs("still here", stdout);
    EXPECT_EQ(capture.Finish(), "still here");
}

} // namespace
