// The programs where UTF-8 is the system's code page. A line's 8-bit form has room for two bytes for each of
// its characters and no more: a long line whose characters take three is cut.
#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "demo/Printers.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

/// What is printed of a line without surrogates: the whole characters that fit into twice the room of the
/// wide form, of which the terminator has the last byte.
std::string Printed(const std::wstring& line) {
    const std::size_t room = 2 * ((line.size() + 32) / 32 * 32);
    std::string bytes;
    for (const wchar_t character : line) {
        const std::string next = Narrow(std::wstring(1, character));
        if (bytes.size() + next.size() > room) {
            break;
        }
        bytes += next;
    }
    return bytes.substr(0, room - 1);
}

std::wstring NoHelp(const std::wstring& topic) {
    return L"No help exists for '" + topic + L"' command.";
}

std::string HelpFor(const std::wstring& topic) {
    const ProcessResult run = Kemba({L"help", topic});
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 0U);
    return run.output;
}

/// What the spooler holds.
std::wstring LocationOf(const std::wstring& printer) {
    const UniquePrinter opened = OwnPrinter(printer);
    DWORD size = 0;
    GetPrinterW(opened.get(), 2, nullptr, 0, &size);
    std::vector<BYTE> record(size);
    EXPECT_TRUE(GetPrinterW(opened.get(), 2, record.data(), size, &size));
    return reinterpret_cast<const PRINTER_INFO_2W*>(record.data())->pLocation;
}

TEST(CodePage65001Programs, AreUnderIt) {
    ASSERT_EQ(GetACP(), 65001U);
}

TEST(CodePage65001Programs, PrintShortLinesWhole) {
    for (const std::wstring& topic :
         {std::wstring(L"\x00FCber"), std::wstring(L"\x20AC 50"), std::wstring(10, L'\x3042'),
          std::wstring(31, L'\x3042'), std::wstring(32, L'\x3042'), std::wstring(34, L'\x3042')}) {
        EXPECT_EQ(HelpFor(topic), Narrow(NoHelp(topic)) + "\r\n");
    }
}

TEST(CodePage65001Programs, PrintLinesOfAnyLengthWholeThatTakeTwoBytesACharacter) {
    for (const std::size_t length : {1, 33, 60, 500, 10'000}) {
        const std::wstring topic(length, L'\x00E9');
        EXPECT_EQ(HelpFor(topic), Narrow(NoHelp(topic)) + "\r\n");
    }
    std::wstring pairs;
    for (int count = 0; count < 500; ++count) {
        pairs += L"\xD83D\xDDA8"; // four bytes for two units
    }
    EXPECT_EQ(HelpFor(pairs), Narrow(NoHelp(pairs)) + "\r\n");
}

TEST(CodePage65001Programs, CutLongLinesOfThreeByteCharacters) {
    // 63 characters have room for 64 and so for 128 bytes; they take 129 and a terminator.
    EXPECT_EQ(HelpFor(std::wstring(33, L'\x3042')),
              Narrow(L"No help exists for '" + std::wstring(33, L'\x3042') + L"' comman") + "\r\n");
    // Of 200 there is room for 164, which leave none for the terminator: it takes the last one's third byte.
    EXPECT_EQ(HelpFor(std::wstring(200, L'\x3042')),
              Narrow(L"No help exists for '" + std::wstring(163, L'\x3042')) + "\xE3\x81\r\n");
    for (const std::size_t length : {60, 61, 62, 65, 1000}) {
        const std::wstring topic(length, L'\x3042');
        const std::string output = HelpFor(topic);
        EXPECT_EQ(output, Printed(NoHelp(topic)) + "\r\n");
        EXPECT_LT(output.size(), Narrow(NoHelp(topic)).size());
    }
}

TEST(CodePage65001Programs, CarryNamesAndValuesAndCutNoMoreThanTheLine) {
    const std::wstring name = L"\x30C9\x30C3\x30AF " + demo::UniquePrinterName();
    for (const std::wstring& comment : {std::wstring(L"\x5009\x5EAB %1"), std::wstring(300, L'\x5009')}) {
        const demo::Printer printer(
            name, {.port = L"LPT1:", .comment = comment, .location = L"", .shareName = L"", .attributes = 0});
        const ProcessResult run = Kemba({L"/p", name, L"get", L"comment"});
        EXPECT_EQ(run.output, Framed("Get", {Printed(name + L": " + comment)}));
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.status, 0U);
        const std::wstring location = comment + L"\x00E9"; // a value that goes to the server is never cut
        EXPECT_EQ(Kemba({L"/p", name, L"set", L"location", location}).status, 0U);
        EXPECT_EQ(LocationOf(name), location);
        EXPECT_EQ(Kemba({L"/p", name, L"get", L"location"}).output,
                  Framed("Get", {Printed(name + L": " + location)}));
    }
}

} // namespace
