// OString: appending, inserting, replacing, trimming, deleting, upper-casing and formatting.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/OString.h"
#include "tests/kit/SetAside.h"

using namespace kit;

namespace {

constexpr std::uint32_t kWestern = 1252;

TEST(OString, AppendsTextsOfBothForms) {
    EXPECT_EQ(OString("ab").Append("cd"), OString("abcd"));
    EXPECT_EQ(OString("ab").Append(L"\x20AC"), OString(L"ab\x20AC"));
    EXPECT_EQ(OString(L"ab").Append("cd"), OString("abcd"));
    EXPECT_EQ(OString("ab") + "cd", OString("abcd"));
    EXPECT_EQ(OString("ab").Append(OString()), OString("ab"));
    EXPECT_EQ(OString("\x80", kWestern).Append(OString("\x88", 1251)), OString(L"\x20AC\x20AC"));
}

TEST(OString, AppendsItself) {
    OString text = "ab";
    text.Append(text);
    EXPECT_EQ(text, OString("abab"));
}

TEST(OString, AppendsASlash) {
    EXPECT_EQ(OString("key").AppendSlash(), OString("key/"));
    EXPECT_EQ(OString().AppendSlash(), OString("/"));
}

TEST(OString, AppendedToKeepsItsCodePage) {
    EXPECT_EQ(OString("a", OCore::kCodePageUtf8).Append(L"b").GetCodePage(), OCore::kCodePageUtf8);
}

TEST(OString, InsertsAtAPosition) {
    EXPECT_EQ(OString("ad").Insert(1, "bc"), OString("abcd"));
    EXPECT_EQ(OString("ad").Insert(0, "x"), OString("xad"));
    EXPECT_EQ(OString("ad").Insert(2, "x"), OString("adx"));
    EXPECT_EQ(OString("ad").Insert(9, "x"), OString("adx"));
    EXPECT_EQ(OString(L"ad").Insert(1, "x"), OString("axd"));
    EXPECT_EQ(OString("ad").Insert(1, OString()), OString("ad"));
}

TEST(OString, DeletesARunOfCharacters) {
    EXPECT_EQ(OString("abcd").Delete(1, 2), OString("ad"));
    EXPECT_EQ(OString("abcd").Delete(0, 4), OString());
    EXPECT_EQ(OString("abcd").Delete(2, 99), OString("ab"));
    EXPECT_EQ(OString("abcd").Delete(9, 1), OString("abcd"));
    EXPECT_EQ(OString("abcd").Delete(1, 0), OString("abcd"));
    EXPECT_EQ(OString(L"a\x20AC"
                      L"b")
                  .Delete(1, 1),
              OString("ab"));
}

TEST(OString, ReplacesEveryOccurrence) {
    EXPECT_EQ(OString("a//b//c").ReplaceAll("//", "%2F"), OString("a%2Fb%2Fc"));
    EXPECT_EQ(OString("aaa").ReplaceAll("aa", "b"), OString("ba"));
    EXPECT_EQ(OString("aa").ReplaceAll("a", "aa"), OString("aaaa"));
    EXPECT_EQ(OString("abc").ReplaceAll("b", ""), OString("ac"));
    EXPECT_EQ(OString("abc").ReplaceAll("x", "y"), OString("abc"));
    EXPECT_EQ(OString("abc").ReplaceAll("", "y"), OString("abc"));
    const OString zero("\xC0\x80", OCore::kCodePageUtf8); // its UTF-16 form begins with zero
    EXPECT_EQ(OString("abc").ReplaceAll(zero, "y"), OString("abc"));
    EXPECT_EQ(OString(L"a\\b").ReplaceAll("\\", "/"), OString("a/b"));
    EXPECT_EQ(OString("a\\b").ReplaceAll("\\", L"\x20AC"), OString(L"a\x20AC"
                                                                   L"b"));
}

TEST(OString, ReplacesInWhicheverFormItHolds) {
    const OString narrow = OString("a/b").ReplaceAll("/", "\\");
    EXPECT_NE(narrow.GetBody()->narrow, nullptr);
    EXPECT_EQ(narrow.GetBody()->wide, nullptr);
    const OString wide = OString(L"a/b").ReplaceAll("/", "\\");
    EXPECT_EQ(wide.GetBody()->narrow, nullptr);
    EXPECT_NE(wide.GetBody()->wide, nullptr);
}

TEST(OString, KeepsTheFormThatItLookedThroughWhenThereIsNothingToReplace) {
    OString both = OString(L"\x4E2D").InCodePage(1252);
    EXPECT_STREQ(both.Narrow(), "?"); // with an 8-bit form, that is the one to look through
    EXPECT_STREQ(both.ReplaceAll("x", "y").Wide(), L"?");

    OString copy = OString(L"\x4E2D").InCodePage(1252);
    const OString text = copy;
    copy.ReplaceAll(L"x", L"y");
    EXPECT_STREQ(text.Narrow(), "?"); // made for one text, it does not come to the other
    EXPECT_EQ(copy.LastCharacter(), L'\x4E2D');
}

TEST(OString, TrimsTrailingCharactersOfASet) {
    EXPECT_EQ(OString("key///").TrimRight("/"), OString("key"));
    EXPECT_EQ(OString("/key/").TrimRight("/"), OString("/key"));
    EXPECT_EQ(OString("key \t").TrimRight(L"\t "), OString("key"));
    EXPECT_EQ(OString("///").TrimRight("/"), OString());
    EXPECT_EQ(OString("key").TrimRight(OString()), OString("key"));
    EXPECT_EQ(OString(L"key\\\\").TrimRight("\\"), OString("key"));
}

TEST(OString, MapsToUpperCase) {
    EXPECT_STREQ(OString("local_Machine 1").ToUpper().Wide(), L"LOCAL_MACHINE 1");
    EXPECT_STREQ(OString(L"\xE4\xF6\x3B1\x436").ToUpper().Wide(), L"\xC4\xD6\x391\x416");
    EXPECT_STREQ(OString(L"\xDF").ToUpper().Wide(), L"\xDF");
}

int g_failAtCall = 0; // 1: the sizing call, 2: the mapping call
int g_calls = 0;
LCID g_locale = 0;
DWORD g_flags = 0;

int WINAPI FailToMap(LCID locale, DWORD flags, const wchar_t* text, int length, wchar_t* buffer, int size) {
    g_locale = locale;
    g_flags = flags;
    EXPECT_EQ(size == 0, g_calls == 0);
    return ++g_calls == g_failAtCall ? 0 : LCMapStringW(locale, flags, text, length, buffer, size);
}

TEST(OString, ThatCannotBeMappedToUpperCaseStaysAsItIs) {
    const SystemCallsPreset calls;
    calls->lcMapString = FailToMap;
    for (const int failing : {1, 2}) {
        SCOPED_TRACE(failing);
        g_failAtCall = failing;
        g_calls = 0;
        OString text = "stays";
        EXPECT_STREQ(text.ToUpper().Narrow(), "stays");
        EXPECT_EQ(g_calls, failing);
    }
    EXPECT_EQ(g_locale, 0x400U); // the user's default
    EXPECT_EQ(g_flags, 0x200U);  // upper case
}

TEST(OString, MappingToUpperCaseLeavesCopiesAlone) {
    const OString text = "abc";
    OString copy = text;
    copy.ToUpper();
    EXPECT_STREQ(text.Narrow(), "abc");
    EXPECT_STREQ(copy.Narrow(), "ABC");
}

TEST(OString, FormatsAndReturnsTheCount) {
    OString text = "before";
    EXPECT_EQ(text.Format(L"%d.%d (%s)", 10, -3, L"x64"), 11);
    EXPECT_STREQ(text.Wide(), L"10.-3 (x64)");
    EXPECT_EQ(text.Format(L"%08X", 0xE0000000U), 8);
    EXPECT_STREQ(text.Narrow(), "E0000000");
    EXPECT_EQ(text.Format(L""), 0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(OString, IsMadeReadyFor4096CharactersToFormat) {
    OString text;
    text.Format(L"%d", 1);
    EXPECT_EQ(text.GetBody()->capacity, 4128U);
}

TEST(OString, FormatsItsOwnText) {
    OString text = "a";
    text.Format(L"%s%s", text.Wide(), text.Wide());
    EXPECT_STREQ(text.Wide(), L"aa");
}

TEST(OString, FormattingStopsAt1024Characters) {
    const std::wstring longer(3000, L'x');
    OString text;
    text.Format(L"%s", longer.c_str());
    EXPECT_GE(text.GetLength(), 1023U);
    EXPECT_LE(text.GetLength(), 1024U);
}

} // namespace
