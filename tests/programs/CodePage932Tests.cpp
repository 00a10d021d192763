// The programs under a multi-byte code page: names, values and searches in double-byte characters.
#include <gtest/gtest.h>

#include <string>

#include "core/OString.h"
#include "demo/Printers.h"
#include "tests/kit/ProcessRun.h"

using namespace kit;

namespace {

TEST(CodePage932, IsInForce) {
    EXPECT_EQ(GetACP(), 932U);
}

TEST(CodePage932, ABackslashByteInsideACharacterIsNotASeparator) {
    // The second byte of U+8868 is that of a backslash.
    const OString text = L"\x8868";
    EXPECT_STREQ(text.Narrow(), "\x95\x5C");
    EXPECT_EQ(OString("\x95\x5C").Find(L'\\'), OString::kNotFound);
}

TEST(CodePage932, NamesAndValuesArriveInDoubleByteCharacters) {
    const std::wstring name = L"\x30C9\x30C3\x30AF \x8868 " + demo::UniquePrinterName();
    const std::wstring comment = L"\x5009\x5EAB %1 \x8868";
    const demo::Printer printer(
        name, {.port = L"LPT1:", .comment = comment, .location = L"", .shareName = L"", .attributes = 0});
    const ProcessResult run = RunProgram(L"kemba.exe", {L"/p", name, L"get", L"comment"});
    EXPECT_EQ(run.output, "Executing 'Get' command.\r\n" + std::string(OString(name.c_str()).Narrow()) +
                              ": " + OString(comment.c_str()).Narrow() +
                              "\r\nFinished processing command.\r\n");
    EXPECT_NE(run.output.find("\x83\x68\x83\x62\x83\x4E \x95\x5C "), std::string::npos);
    EXPECT_EQ(run.status, 0U);
}

TEST(CodePage932, CharactersThatItCannotHoldAreReplaced) {
    const ProcessResult run = RunProgram(L"kemba.exe", {L"\xAC00 \xD83D\xDE00"});
    EXPECT_EQ(run.output,
              "The command '" + std::string(OString(L"\xAC00 \xD83D\xDE00").Narrow()) + "' is unknown.\r\n");
    EXPECT_NE(run.output.find('?'), std::string::npos);
    EXPECT_EQ(run.status, 2U);
}

} // namespace
