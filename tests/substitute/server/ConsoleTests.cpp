// Text for consoles, files and pipes.
#include <gtest/gtest.h>

#include <string>

#include "substitute/server/Console.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFile.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

TEST(Console, ConsolesGetTheTextItself) {
    FreeConsole();
    ASSERT_TRUE(AllocConsole());
    const UniqueHandle screen(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE,
                                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                        CONSOLE_TEXTMODE_BUFFER, nullptr));
    EXPECT_TRUE(WriteText(screen.get(), L"x \x0416\x03A9"));
    std::wstring cells(4, L'\0');
    DWORD read = 0;
    ASSERT_TRUE(ReadConsoleOutputCharacterW(screen.get(), cells.data(), 4, {}, &read));
    EXPECT_EQ(cells, L"x \x0416\x03A9");
}

TEST(Console, FilesGetBytesOfTheAnsiCodePage) {
    const TemporaryFile file;
    const UniqueHandle output = OwnFile(
        CreateFileW(file.Path().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    const std::wstring text = L"x \x00E4\r\n";
    char expected[16] = {};
    WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, expected, sizeof(expected), nullptr, nullptr);
    EXPECT_TRUE(WriteText(output.get(), text));
    EXPECT_TRUE(WriteText(output.get(), L""));
    EXPECT_EQ(file.Read(), expected);
}

TEST(Console, WhatCannotBeWrittenIsReported) {
    const TemporaryFile file;
    const UniqueHandle input = OwnFile(
        CreateFileW(file.Path().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(WriteText(input.get(), L"x"));
}

} // namespace
