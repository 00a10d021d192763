// Started programs: words, environment, output, status, timeout.
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/kit/Environment.h"
#include "tests/kit/ProcessRun.h"

using namespace kit;

namespace {

constexpr wchar_t kProbe[] = L"kit-probe.exe";

/// The words that the probe read, taken from its output.
std::vector<std::wstring> WordsOf(const std::string& bytes) {
    std::vector<std::wstring> words(1);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        if (const auto unit = static_cast<wchar_t>(low | high << 8)) {
            words.back() += unit;
        } else {
            words.emplace_back();
        }
    }
    words.pop_back();
    return words;
}

TEST(ProcessRun, AProgramReadsTheWordsAsTheyWereGiven) {
    const std::vector<std::wstring> words{L"plain",
                                          L"",
                                          L"Label A",
                                          LR"(c:\my folder\)",
                                          LR"(c:\folder\)",
                                          LR"(say "hello")",
                                          LR"(\"quote)",
                                          LR"(\\ ")",
                                          LR"(a\\\b c\\)",
                                          L"tab\there",
                                          L"%PATH%",
                                          L"caf\u00E9 \u30E9",
                                          L"/?",
                                          LR"(")",
                                          L"a*b"};
    std::vector<std::wstring> line{L"words"};
    line.insert(line.end(), words.begin(), words.end());
    EXPECT_EQ(WordsOf(RunProgram(kProbe, line).output), words);
}

TEST(ProcessRun, TheStatusHasAll32Bits) {
    for (const DWORD status : {0UL, 2UL, 256UL, 0x80070005UL, 0xFFFFFFFFUL}) {
        SCOPED_TRACE(status);
        EXPECT_EQ(RunProgram(kProbe, {L"status", std::to_wstring(status)}).status, status);
    }
}

TEST(ProcessRun, OutputAndErrorsArriveByteForByteAndApart) {
    for (const bool toFile : {false, true}) {
        SCOPED_TRACE(toFile);
        ProcessOptions options;
        options.outputToFile = toFile;
        const ProcessResult result = RunProgram(kProbe, {L"both"}, options);
        EXPECT_EQ(result.output, std::string("out\0\n", 5));
        EXPECT_EQ(result.errors, "err\r\n");
    }
}

TEST(ProcessRun, MoreOutputThanAPipeHoldsArrivesWhole) {
    const ProcessResult result = RunProgram(kProbe, {L"much"});
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.output.size(), 1'000'000U);
}

TEST(ProcessRun, StandardInputIsEmpty) {
    EXPECT_EQ(RunProgram(kProbe, {L"input"}).status, 0U);
}

TEST(ProcessRun, ExtraVariablesReachTheProgramAndReplaceItsOwn) {
    const EnvironmentPreset old(L"KIT_OLD");
    old.Put(L"old");
    ProcessOptions options;
    options.environment = {{L"kit_old", L"new"}, {L"KIT_MORE", L"m=o r\u00E9"}};
    const auto valueOf = [&](const wchar_t* name) {
        return RunProgram(kProbe, {L"variable", name}, options).output;
    };
    EXPECT_EQ(valueOf(L"KIT_OLD"), std::string("n\0e\0w\0", 6));
    EXPECT_EQ(valueOf(L"KIT_MORE"), std::string("m\0=\0o\0 \0r\0\xE9\0", 12));
    EXPECT_NE(valueOf(L"PATH"), "");
}

TEST(ProcessRun, AProgramThatRunsTooLongIsEnded) {
    ProcessOptions options;
    options.timeout = std::chrono::milliseconds(300);
    const ULONGLONG start = GetTickCount64();
    EXPECT_TRUE(RunProgram(kProbe, {L"sleep"}, options).timedOut);
    EXPECT_LT(GetTickCount64() - start, 20'000U);
}

TEST(ProcessRun, AProgramThatIsMissingThrows) {
    EXPECT_THROW(RunProgram(L"kit-missing.exe", {}), std::runtime_error);
}

TEST(ProcessRun, TheFolderOfTheProgramsCanBeChosen) {
    const std::wstring beside = ProgramPath(kProbe);
    EXPECT_NE(GetFileAttributesW(beside.c_str()), INVALID_FILE_ATTRIBUTES);
    const EnvironmentPreset folder(L"KEMBA_PROGRAMS");
    folder.Put(LR"(c:\elsewhere)");
    EXPECT_EQ(ProgramPath(kProbe), LR"(c:\elsewhere\kit-probe.exe)");
}

} // namespace
