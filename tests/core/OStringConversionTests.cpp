// OString: the two forms and how code pages turn one into the other.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

#include "core/OString.h"

namespace {

constexpr std::uint32_t kWestern = 1252;

TEST(OStringConversion, MakesAFormOnlyWhenItIsAskedFor) {
    const OString narrow = "abc";
    EXPECT_NE(narrow.GetBody()->narrow, nullptr);
    EXPECT_EQ(narrow.GetBody()->wide, nullptr);
    EXPECT_STREQ(narrow.Wide(), L"abc");
    EXPECT_NE(narrow.GetBody()->narrow, nullptr);

    const OString wide = L"abc";
    EXPECT_EQ(wide.GetBody()->narrow, nullptr);
    EXPECT_STREQ(wide.Narrow(), "abc");
    EXPECT_NE(wide.GetBody()->wide, nullptr);
}

TEST(OStringConversion, ServesAllCopiesAtOnce) {
    const OString text = "abc";
    const OString copy = text;
    const wchar_t* const wide = copy.Wide();
    EXPECT_EQ(text.GetBody(), copy.GetBody());
    EXPECT_EQ(text.Wide(), wide);
}

TEST(OStringConversion, IsDoneOnce) {
    const OString text = L"abc";
    EXPECT_EQ(text.Narrow(), text.Narrow());
    EXPECT_EQ(text.Wide(), text.Wide());
}

TEST(OStringConversion, FollowsTheCodePage) {
    const struct {
        std::uint32_t codePage;
        const char* narrow;
        const wchar_t* wide;
    } rows[] = {
        {437, "\x84", L"\xE4"},
        {932, "\x83\x5C", L"\x30BD"},
        {936, "\xD6\xD0", L"\x4E2D"},
        {949, "\xC7\xD1", L"\xD55C"},
        {950, "\xA4\xA4", L"\x4E2D"},
        {1208, "\xE2\x82\xAC", L"\x20AC"},
        {1251, "\xC6", L"\x0416"},
        {1252, "\x80", L"\x20AC"},
        {1361, "\xD0\x65", L"\xD55C"},
        {64999, "\x80\xFF", L"\x80\xFF"},
        {65001, "\xE2\x82\xAC", L"\x20AC"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.codePage);
        const OString narrow(row.narrow, row.codePage);
        EXPECT_STREQ(narrow.Wide(), row.wide);
        EXPECT_EQ(narrow.GetCodePage(), row.codePage);
        EXPECT_STREQ(OString(row.wide).InCodePage(row.codePage).Narrow(), row.narrow);
    }
}

TEST(OStringConversion, OfCodePage0IsTheSystemsAnsiOne) {
    const OString text("\xC3\xA4");
    EXPECT_EQ(text.GetCodePage(), 0U);
    EXPECT_EQ(OString(L"a").GetCodePage(), 0U);
    wchar_t expected[8] = {};
    ASSERT_GT(MultiByteToWideChar(CP_ACP, 0, "\xC3\xA4", -1, expected, 8), 0);
    EXPECT_STREQ(text.Wide(), expected);
}

TEST(OStringConversion, OfBytesKeepsEveryByte) {
    std::string bytes;
    for (int byte = 1; byte <= 255; ++byte) {
        bytes.push_back(static_cast<char>(byte));
    }
    const OString text(bytes.c_str(), OCore::kCodePageBytes);
    const std::wstring wide = text.Wide();
    ASSERT_EQ(wide.size(), 255U);
    for (std::size_t at = 0; at < wide.size(); ++at) {
        EXPECT_EQ(wide[at], at + 1);
    }
    EXPECT_EQ(OString(wide.c_str()).InCodePage(OCore::kCodePageBytes).Narrow(), bytes);
}

TEST(OStringConversion, ToBytesKeepsTheLowByteOfAUnit) {
    EXPECT_STREQ(OString(L"\x1241\x4E2D").InCodePage(OCore::kCodePageBytes).Narrow(), "A-");
    EXPECT_STREQ(OString(L"a\x0100z").InCodePage(OCore::kCodePageBytes).Narrow(), "a"); // a zero byte ends it
}

TEST(OStringConversion, ReplacesWhatTheCodePageCannotHoldAsTheSystemDoes) {
    EXPECT_STREQ(OString(L"a\x4E2D"
                         L"b")
                     .InCodePage(kWestern)
                     .Narrow(),
                 "a?b");
}

TEST(OStringConversion, ToAnotherCodePageDropsThe8BitForm) {
    const OString text("\x80", kWestern);
    const OString other = text.InCodePage(OCore::kCodePageUtf8);
    EXPECT_EQ(other.GetBody()->narrow, nullptr);
    EXPECT_EQ(other.GetCodePage(), OCore::kCodePageUtf8);
    EXPECT_STREQ(other.Narrow(), "\xE2\x82\xAC");
    EXPECT_STREQ(text.Narrow(), "\x80");
}

TEST(OStringConversion, ToUtf8HasRoomForEveryCharacter) {
    for (const std::size_t length : {31U, 32U, 63U, 500U}) {
        SCOPED_TRACE(length);
        const OString text =
            OString(std::wstring(length, L'\x20AC').c_str()).InCodePage(OCore::kCodePageUtf8);
        EXPECT_EQ(std::strlen(text.Narrow()), length * 3);
    }
}

TEST(OStringConversion, ToDoubleBytesHasRoomForEveryCharacter) {
    const OString text = OString(std::wstring(31, L'\x30BD').c_str()).InCodePage(932);
    EXPECT_EQ(std::strlen(text.Narrow()), 62U);
}

TEST(OStringConversion, ThatDoesNotFitLeavesATerminatedText) {
    // Three bytes for each of 31 characters do not fit into two bytes for each of 32.
    const OString text = OString(std::wstring(31, L'\x20AC').c_str()).InCodePage(CP_UTF8);
    EXPECT_LT(std::strlen(text.Narrow()), 64U);
    EXPECT_STREQ(text.Wide(), std::wstring(31, L'\x20AC').c_str());
}

TEST(OStringConversion, ToFourByteCharactersThatDoNotFitLeavesATerminatedText) {
    const OString text = OString(std::wstring(31, L'\x0F40').c_str()).InCodePage(54936);
    EXPECT_LT(std::strlen(text.Narrow()), 64U);
}

TEST(OStringConversion, OfAnUnknownCodePageGivesNothing) {
    const OString text("abc", 12345);
    EXPECT_STREQ(text.Wide(), L"");
    EXPECT_STREQ(text.Narrow(), "abc");
    EXPECT_STREQ(OString(L"abc").InCodePage(12345).Narrow(), "");
}

TEST(OStringConversion, OfASequenceThatIsCutEndsThoughItSwallowsTheTerminator) {
    const std::string bytes = std::string(20, 'a') + "\xE0";
    wchar_t expected[32] = {};
    ASSERT_GT(MultiByteToWideChar(CP_UTF8, 0, bytes.c_str(), -1, expected, 32), 0);
    const OString text(bytes.c_str(), CP_UTF8);
    // Let go, a block of the size that the text asks for next holds something.
    EXPECT_EQ(std::wstring(31, L'x').size(), 31U);
    EXPECT_STREQ(text.Wide(), expected);
}

TEST(OStringConversion, FromUtf8IsBoundedByTheCapacity) {
    // The last byte is read as a lead of four: two units, of which one has room.
    const std::string bytes = std::string(30, 'a') + "\xF0";
    EXPECT_EQ(std::wcslen(OString(bytes.c_str(), OCore::kCodePageUtf8).Wide()), 31U);
}

} // namespace
