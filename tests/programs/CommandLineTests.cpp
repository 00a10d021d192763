// kemba.exe alone: words, bytes and exit status as they cross the process boundary.
#include <gtest/gtest.h>

#include <string>

#include "messages/TextResource.h"
#include "tests/programs/Kemba.h"

namespace {

using programs::Kemba;
using programs::Words;

const std::string kHelp = std::string(TextResource().GetText("help:help").Narrow()) + "\r\n";

TEST(KembaProgram, ShowsItsHelpAndNothingElse) {
    const kit::ProcessResult run = Kemba({});
    EXPECT_EQ(run.output, kHelp);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 1U);
}

TEST(KembaProgram, WritesTheSameBytesToAPipeAndToAFile) {
    kit::ProcessOptions toFile;
    toFile.outputToFile = true;
    EXPECT_EQ(Kemba({L"help"}, toFile).output, kHelp);
    EXPECT_EQ(Kemba({L"help"}).output, kHelp);
}

TEST(KembaProgram, ExitStatusesAreTheThreeOnes) {
    EXPECT_EQ(Kemba({L"help"}).status, 0U);
    EXPECT_EQ(Kemba({L"/p"}).status, 1U);
    EXPECT_EQ(Kemba({L"bogus"}).status, 2U);
}

TEST(KembaProgram, QuietModeWritesNothing) {
    const kit::ProcessResult run = Kemba({L"/q", L"bogus"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 2U);
}

TEST(KembaProgram, WordsArriveAsTyped) {
    // In a folder where the patterns would match the catalogue and the manifest, were they expanded.
    const Words words{L"*",   L"cmake/*.cmake", L"dev?",          L"de?",
                      L"a b", L"quote\"quote",  L"back\\slash\\", L"\\\"",
                      L"",    L"50%PATH%",      L"\x00E4"};
    for (const std::wstring& word : words) {
        const kit::ProcessResult run = Kemba({L"help", word});
        EXPECT_EQ(run.output,
                  "No help exists for '" + std::string(OString(word.c_str()).Narrow()) + "' command.\r\n");
        EXPECT_EQ(run.status, 0U);
    }
}

TEST(KembaProgram, TakesAWordOf32000Characters) {
    EXPECT_EQ(Kemba({std::wstring(32'000, L'x')}).output,
              "The command '" + std::string(32'000, 'x') + "' is unknown.\r\n");
}

TEST(KembaProgram, TakesAThousandWords) {
    Words words{L"help", L"usage"};
    words.resize(1000, L"w");
    const kit::ProcessResult run = Kemba(words);
    EXPECT_EQ(run.output.substr(0, 14), "KEMBA usage:\r\n");
    EXPECT_EQ(run.status, 0U);
}

TEST(KembaProgram, TakesALoneSurrogate) {
    const kit::ProcessResult run = Kemba({L"\xD83D"});
    EXPECT_EQ(run.output, "The command '" + std::string(OString(L"\xD83D").Narrow()) + "' is unknown.\r\n");
    EXPECT_EQ(run.status, 2U);
}

} // namespace
