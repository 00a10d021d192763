// OString: the shared body, lengths, parts and searches.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/OString.h"

namespace {

constexpr std::uint32_t kWestern = 1252;
constexpr std::uint32_t kJapanese = 932;

TEST(OString, IsOnePointer) {
    EXPECT_EQ(sizeof(OString), sizeof(void*));
}

TEST(OString, WithoutABodyIsAnEmptyTextInEveryOperation) {
    OString empty;
    EXPECT_EQ(empty.GetBody(), nullptr);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(empty.GetLength(), 0U);
    EXPECT_EQ(empty.GetCodePage(), OCore::kCodePageAnsi);
    EXPECT_STREQ(empty.Narrow(), "");
    EXPECT_STREQ(empty.Wide(), L"");
    EXPECT_EQ(empty.LastCharacter(), 0);
    EXPECT_EQ(empty.Find(L'a'), -1);
    EXPECT_EQ(empty.Find(0), -1);
    EXPECT_EQ(empty.FindLastOf("abc"), -1);
    EXPECT_EQ(empty.FindLastOf(OString()), -1);
    EXPECT_EQ(empty.Compare(OString()), 0);
    EXPECT_EQ(empty.Compare("a"), -1);
    EXPECT_EQ(OString("a").Compare(empty), 1);
    EXPECT_EQ(empty.Left(3), OString());
    EXPECT_EQ(empty.From(0), OString());
    EXPECT_EQ(empty.Middle(2, 2), OString());
    EXPECT_EQ(empty.InCodePage(OCore::kCodePageUtf8), OString());
    EXPECT_EQ(OString().ReplaceAll("a", "b"), OString());
    EXPECT_EQ(OString().TrimRight("a"), OString());
    EXPECT_EQ(OString().Delete(0, 5), OString());
    EXPECT_EQ(OString().ToUpper(), OString());
    EXPECT_EQ(OString().Append(OString()), OString());
    EXPECT_STREQ(OString().Append("x").Narrow(), "x");
    EXPECT_STREQ(OString().Insert(7, L"x").Wide(), L"x");
}

TEST(OString, OfNothingHasNoBody) {
    EXPECT_EQ(OString("").GetBody(), nullptr);
    EXPECT_EQ(OString(L"").GetBody(), nullptr);
    EXPECT_EQ(OString(static_cast<const char*>(nullptr)).GetBody(), nullptr);
    EXPECT_EQ(OString(static_cast<const wchar_t*>(nullptr)).GetBody(), nullptr);
    EXPECT_EQ(OString(wchar_t{0}).GetBody(), nullptr);
}

TEST(OString, OfACharacterHoldsThatCharacter) {
    EXPECT_STREQ(OString(L'\x20AC').Wide(), L"\x20AC");
    EXPECT_EQ(OString(L'a').GetLength(), 1U);
}

TEST(OString, CopiesShareOneBodyUntilTheLastOneGoes) {
    OString text = "shared";
    const OString::Body* const body = text.GetBody();
    EXPECT_EQ(body->references, 1U);
    {
        const OString copy = text;
        OString assigned = "other";
        assigned = copy;
        EXPECT_EQ(copy.GetBody(), body);
        EXPECT_EQ(assigned.GetBody(), body);
        EXPECT_EQ(body->references, 3U);
    }
    EXPECT_EQ(body->references, 1U);

    const OString moved = std::move(text);
    EXPECT_EQ(moved.GetBody(), body);
    EXPECT_EQ(body->references, 1U);
}

TEST(OString, AssignedToItselfStaysWhatItIs) {
    OString text = "self";
    const OString& same = text;
    text = same;
    EXPECT_STREQ(text.Narrow(), "self");
    EXPECT_EQ(text.GetBody()->references, 1U);
}

TEST(OString, ChangingACopyLeavesTheOthersAlone) {
    const OString text = "before";
    OString copy = text;
    copy.Append(" after");
    EXPECT_STREQ(text.Narrow(), "before");
    EXPECT_STREQ(copy.Narrow(), "before after");
    EXPECT_NE(copy.GetBody(), text.GetBody());
}

TEST(OString, CountsReferencesAtomically) {
    const OString text = "counted";
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&text] {
            for (int round = 0; round < 20'000; ++round) {
                const OString copy = text;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(text.GetBody()->references, 1U);
}

TEST(OString, AFormOnceMadeStays) {
    const OString plain = L"plain";
    const char* const narrow = plain.Narrow();
    EXPECT_EQ(plain.Narrow(), narrow);
    // Forms that begin with zero, and so count as absent, were handed out all the same.
    const OString bytes = OString(L"\x0100 text").InCodePage(OCore::kCodePageBytes);
    const char* const nothing = bytes.Narrow();
    EXPECT_STREQ(nothing, "");
    EXPECT_EQ(bytes.Narrow(), nothing);
    const OString overlong("\xC0\x80 text", OCore::kCodePageUtf8);
    const wchar_t* const zero = overlong.Wide();
    EXPECT_STREQ(zero, L"");
    EXPECT_EQ(overlong.Wide(), zero);
}

TEST(OString, MakesBothFormsForThreadsToRead) {
    const OString fromNarrow = "text";
    const OString fromWide = L"text";
    for (const OString* const text : {&fromNarrow, &fromWide}) {
        text->MakeBothForms();
        EXPECT_STREQ(text->GetBody()->narrow.get(), "text");
        EXPECT_STREQ(text->GetBody()->wide.get(), L"text");
    }
    OString().MakeBothForms();
}

TEST(OString, CapacityGrowsInStepsOf32) {
    const struct {
        std::size_t length;
        std::uint64_t capacity;
    } rows[] = {{1, 32}, {31, 32}, {32, 64}, {33, 64}, {63, 64}, {64, 96}, {95, 96}, {96, 128}, {1000, 1024}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.length);
        EXPECT_EQ(OString(std::string(row.length, 'a').c_str()).GetBody()->capacity, row.capacity);
        EXPECT_EQ(OString(std::wstring(row.length, L'a').c_str()).GetBody()->capacity, row.capacity);
        OString grown = "a";
        grown.Append(std::string(row.length - 1, 'a').c_str());
        EXPECT_EQ(grown.GetBody()->capacity, row.capacity);
        EXPECT_EQ(grown.GetLength(), row.length);
    }
}

TEST(OString, CapacityDoesNotShrinkWithTheText) {
    OString text(std::string(100, 'a').c_str());
    text.ReplaceAll("a", "");
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetBody()->capacity, 128U);
}

TEST(OString, LengthCountsCharactersOfTheFormThatIsWorkedOn) {
    EXPECT_EQ(OString("\xE4\xF6\xFC", kWestern).GetLength(), 3U);
    EXPECT_EQ(OString("\x83\x5C\x61", kJapanese).GetLength(), 2U);
    EXPECT_EQ(OString("\xC3\xA4\xE2\x82\xAC", OCore::kCodePageUtf8).GetLength(), 2U);
    EXPECT_EQ(OString(L"\xE4\x20AC").GetLength(), 2U);
}

TEST(OString, PartsAreCutWithinTheText) {
    for (const OString& text : {OString("abcdef"), OString(L"abcdef")}) {
        EXPECT_EQ(text.Left(0), OString());
        EXPECT_EQ(text.Left(2), OString("ab"));
        EXPECT_EQ(text.Left(6), text);
        EXPECT_EQ(text.Left(7), text);
        EXPECT_EQ(text.From(0), text);
        EXPECT_EQ(text.From(4), OString("ef"));
        EXPECT_EQ(text.From(6), OString());
        EXPECT_EQ(text.From(9), OString());
        EXPECT_EQ(text.Middle(1, 3), OString("bcd"));
        EXPECT_EQ(text.Middle(5, 3), OString("f"));
        EXPECT_EQ(text.Middle(8, 1), OString());
        EXPECT_EQ(text.LastCharacter(), L'f');
    }
    EXPECT_EQ(OString("a\xE4", kWestern).LastCharacter(), 0xE4); // an 8-bit unit by its value
    EXPECT_EQ(OString("a\x83\x5C", kJapanese).LastCharacter(), 0x30BD);
    EXPECT_EQ(OString("\xC0\x80z", OCore::kCodePageUtf8).LastCharacter(),
              0); // its UTF-16 form begins with zero
}

TEST(OString, PartsOfADoubleByteTextAreCutByCharacter) {
    const OString text("\x95\x5C"
                       "a\x83\x68z",
                       932);
    EXPECT_EQ(text.GetLength(), 4U);
    EXPECT_STREQ(text.Middle(1, 2).Wide(), L"a\x30C9");
    EXPECT_STREQ(text.Left(1).Wide(), L"\x8868");
    EXPECT_STREQ(text.From(3).Wide(), L"z");
    // ... and those of a single-byte text by byte, which keeps what has no character.
    EXPECT_STREQ(OString("a\x81z", 1252).Middle(1, 1).GetBody()->narrow.get(), "\x81");
}

TEST(OString, PartsKeepTheCodePage) {
    EXPECT_EQ(OString("abc", OCore::kCodePageUtf8).Left(1).GetCodePage(), OCore::kCodePageUtf8);
    EXPECT_EQ(OString("abc", kWestern).From(1).GetCodePage(), kWestern);
}

TEST(OString, FindsACharacterFromAPosition) {
    for (const OString& text : {OString("abcabc"), OString(L"abcabc")}) {
        EXPECT_EQ(text.Find(L'b'), 1);
        EXPECT_EQ(text.Find(L'b', 1), 1);
        EXPECT_EQ(text.Find(L'b', 2), 4);
        EXPECT_EQ(text.Find(L'b', 5), -1);
        EXPECT_EQ(text.Find(L'b', 99), -1);
        EXPECT_EQ(text.Find(L'B'), -1);
        EXPECT_EQ(text.Find(0), -1);
    }
}

TEST(OString, FindsACharacterByItsByteInTheCodePage) {
    EXPECT_EQ(OString("price 1 \x80", kWestern).Find(L'\x20AC'), 8);
    EXPECT_EQ(OString("price 1 \x80", kWestern).Find(L'\x80'), -1);
    EXPECT_EQ(OString("\x80", OCore::kCodePageBytes).Find(L'\x80'), 0);
}

TEST(OString, DoesNotFindACharacterThatTheCodePageCannotHold) {
    EXPECT_EQ(OString("what? A", kWestern).Find(L'\x4E2D'), -1);
    EXPECT_EQ(OString("what? A", kWestern).Find(L'\x0100'), -1); // the system's nearest would be A
}

TEST(OString, OfADoubleByteCodePageIsSearchedByCharacter) {
    // The second byte of the first character is that of a backslash.
    const OString text("\x83\x5C"
                       "a\\",
                       kJapanese);
    EXPECT_EQ(text.Find(L'\\'), 2);
    EXPECT_EQ(text.Left(2).Find(L'\\'), -1);
    EXPECT_EQ(OString("\x83\x5C"
                      "a",
                      kJapanese)
                  .FindLastOf("\\"),
              -1);
    EXPECT_STREQ(OString("\x83\x5C", kJapanese).TrimRight("\\").Wide(), L"\x30BD");
    EXPECT_STREQ(OString("\x83\x5C", kJapanese).ReplaceAll("\\", "/").Wide(), L"\x30BD");
    // The same bytes under a single-byte code page do hold one.
    EXPECT_EQ(OString("\x83\x5C"
                      "a",
                      kWestern)
                  .Find(L'\\'),
              1);
}

TEST(OString, EachMultiByteCodePageIsWorkedOnInUtf16) {
    for (const std::uint32_t codePage : {932U, 936U, 949U, 950U, 1361U, 1208U}) {
        SCOPED_TRACE(codePage);
        const OString text("abc", codePage);
        EXPECT_EQ(text.GetBody()->wide, nullptr);
        EXPECT_EQ(text.Find(L'b'), 1);
        EXPECT_NE(text.GetBody()->wide, nullptr);
    }
    const OString wholeChinese("abc", 54936);
    wholeChinese.Find(L'b');
    EXPECT_NE(wholeChinese.GetBody()->wide, nullptr);
}

TEST(OString, EveryOtherCodePageIsWorkedOnInBytes) {
    for (const std::uint32_t codePage : {437U, 874U, 1250U, 1251U, 1252U, 65001U, 64999U}) {
        SCOPED_TRACE(codePage);
        const OString text("abc", codePage);
        EXPECT_EQ(text.Find(L'b'), 1);
        EXPECT_EQ(text.FindLastOf(OString("cb", codePage)), 2);
        EXPECT_EQ(text.Compare(OString("abd", codePage)), -1);
        EXPECT_EQ(text.GetBody()->wide, nullptr);
    }
}

TEST(OString, FindsTheLastCharacterOfASet) {
    for (const OString& text : {OString("2:a/b/c"), OString(L"2:a/b/c")}) {
        EXPECT_EQ(text.FindLastOf(":/"), 5);
        EXPECT_EQ(text.FindLastOf(L":"), 1);
        EXPECT_EQ(text.FindLastOf("xyz"), -1);
        EXPECT_EQ(text.FindLastOf(OString()), -1);
    }
}

TEST(OString, ComparesCodeUnitByCodeUnit) {
    const struct {
        const wchar_t* left;
        const wchar_t* right;
        int order;
    } rows[] = {
        {L"a", L"a", 0},  {L"a", L"b", -1}, {L"b", L"a", 1},  {L"a", L"aa", -1},   {L"aa", L"a", 1},
        {L"B", L"a", -1}, {L"a", L"A", 1},  {L"Z", L"_", -1}, {L"z", L"\xE4", -1}, {L"\xFF21", L"\xD800", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.left << " " << row.right);
        const OString left = row.left;
        const OString right = row.right;
        EXPECT_EQ(left.Compare(right), row.order);
        EXPECT_EQ(left < right, row.order < 0);
        EXPECT_EQ(left == right, row.order == 0);
    }
}

TEST(OString, ComparesBytesAsUnsigned) {
    EXPECT_EQ(OString("\x80", kWestern).Compare(OString("\x7F", kWestern)), 1);
    EXPECT_EQ(OString("z", kWestern).Compare(OString("\xE4", kWestern)), -1);
}

TEST(OString, ComparesTextsOfDifferentCodePagesByCharacter) {
    EXPECT_EQ(OString("\x80", kWestern), OString(L"\x20AC"));
    EXPECT_EQ(OString("\x80", kWestern), OString("\x88", 1251));
    EXPECT_EQ(OString("\x80", kWestern), OString("\xE2\x82\xAC", OCore::kCodePageUtf8));
}

TEST(OString, ComparesWordsIgnoringTheCaseOfPlainLetters) {
    EXPECT_TRUE(OCore::EqualsIgnoreCase(L"Settings", L"sETTINGS"));
    EXPECT_TRUE(OCore::EqualsIgnoreCase(L"azAZ", L"AZaz"));
    EXPECT_TRUE(OCore::EqualsIgnoreCase(L"", L""));
    EXPECT_FALSE(OCore::EqualsIgnoreCase(L"set", L"settings"));
    EXPECT_FALSE(OCore::EqualsIgnoreCase(L"settings", L"set"));
    EXPECT_FALSE(OCore::EqualsIgnoreCase(L"[", L"{"));
    EXPECT_FALSE(OCore::EqualsIgnoreCase(L"`", L"@"));
    EXPECT_FALSE(OCore::EqualsIgnoreCase(L"\xE4", L"\xC4"));
}

} // namespace
