// UTF-8: the decoder's fixed rules, bad bytes included, and the encoder.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/Utf8.h"
#include "tests/kit/Narrow.h"

using namespace kit;

namespace {

TEST(Utf8, DecodesEachLengthOfSequence) {
    EXPECT_EQ(Wide("a\x7F"), L"a\x7F");
    EXPECT_EQ(Wide("\xC2\x80\xC3\xA4\xDF\xBF"), L"\x80\xE4\x7FF");
    EXPECT_EQ(Wide("\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBD"), L"\x800\x20AC\xFFFD");
    EXPECT_EQ(Wide("\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"),
              L"\xD800\xDC00\xD83D\xDE00\xDBFF\xDFFF");
    EXPECT_EQ(Wide(""), L"");
}

TEST(Utf8, DecodesOverlongSequencesWithoutValidation) {
    EXPECT_EQ(Wide("\xC1\x81"), L"A");
    EXPECT_EQ(Wide("\xE0\x81\x81"), L"A");
}

TEST(Utf8, TakesTheBytesThatFollowALeadWhateverTheyAre) {
    EXPECT_EQ(Wide("\xC3"
                   "Ab"),
              L"\xC1"
              L"b"); // 3 << 6 | 'A' & 0x3F
    EXPECT_EQ(Wide("\xE2"
                   "ABc"),
              L"\x2042"
              L"c");
}

TEST(Utf8, ReadsAFourByteLeadUnderFourBitsOfMask) {
    // With a mask of three bits 0xF8 would be read as 0xF0.
    const std::uint32_t value = (0x8U << 18 | 0x10U << 12) - 0x10000;
    const std::wstring text = Wide("\xF8\x90\x80\x80");
    ASSERT_EQ(text.size(), 2U);
    EXPECT_EQ(text[0], static_cast<wchar_t>(0xD800 + (value >> 10)));
    EXPECT_EQ(text[1], static_cast<wchar_t>(0xDC00 + (value & 0x3FF)));
    EXPECT_NE(text, Wide("\xF0\x90\x80\x80"));
}

TEST(Utf8, ReadsAStrayContinuationByteAsAFourByteLead) {
    // 0x81: 1 << 18, less 0x10000, is 0x30000.
    EXPECT_EQ(Wide("\x81\x80\x80\x80z"), std::wstring({static_cast<wchar_t>(0xD8C0), 0xDC00, L'z'}));
    // 0x80: nothing less 0x10000 wraps; the high unit keeps its low 16 bits.
    const std::uint32_t wrapped = 0U - 0x10000;
    EXPECT_EQ(Wide("\x80\x80\x80\x80"),
              std::wstring({static_cast<wchar_t>(0xD800 + (wrapped >> 10)), 0xDC00}));
}

TEST(Utf8, CountsBytesMissingAtTheEndAsZero) {
    EXPECT_EQ(Wide("a\xC3"), L"a\xC0");
    EXPECT_EQ(Wide("a\xE2\x82"), L"a\x2080");
    EXPECT_EQ(Wide("a\xE2"), L"a\x2000");
    EXPECT_EQ(Wide("\xF0\x9F\x98"), L"\xD83D\xDE00");
    EXPECT_EQ(Wide("\xF0\x9F"), L"\xD83C\xDC00");
}

TEST(Utf8, ReadsNothingPastTheEnd) {
    // Bytes that would change the result stand right behind the part that is decoded.
    const std::string bytes = "\xF0\x9F\x98\x80\xBF";
    EXPECT_EQ(Wide(std::string_view(bytes).substr(0, 2)), Wide("\xF0\x9F"));
    EXPECT_EQ(Wide(std::string_view("\xE2\x82\xAC").substr(0, 2)), L"\x2080");
    EXPECT_EQ(Wide(std::string_view("\xC3\xA4").substr(0, 1)), L"\xC0");
}

TEST(Utf8, EncodesEachLengthOfSequence) {
    EXPECT_EQ(Narrow(L"a\x7F"), "a\x7F");
    EXPECT_EQ(Narrow(L"\x80\xE4\x7FF"), "\xC2\x80\xC3\xA4\xDF\xBF");
    EXPECT_EQ(Narrow(L"\x800\x20AC\xFFFD"), "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBD");
    EXPECT_EQ(Narrow(L"\xD800\xDC00\xD83D\xDE00\xDBFF\xDFFF"),
              "\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF");
    EXPECT_EQ(Narrow(L""), "");
}

TEST(Utf8, EncodesALoneSurrogateAsThreeBytes) {
    EXPECT_EQ(Narrow(L"\xD83D"), "\xED\xA0\xBD");
    EXPECT_EQ(Narrow(L"\xD83Dz"), "\xED\xA0\xBDz");
    EXPECT_EQ(Narrow(L"\xDE00\xD83D"), "\xED\xB8\x80\xED\xA0\xBD");
}

TEST(Utf8, DecodesWhatItEncodedBackToTheSame) {
    std::wstring text;
    for (unsigned unit = 1; unit <= 0xFFFF; unit += 7) {
        text.push_back(static_cast<wchar_t>(unit));
        text.push_back(L'-'); // keeps surrogates apart
    }
    text += L"\xD83D\xDE00";
    EXPECT_EQ(Wide(Narrow(text)), text);
}

TEST(Utf8, CutsWhatHasNoRoom) {
    const std::string_view bytes = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const std::wstring_view text = L"a\xE4\x20AC\xD83D\xDE00z";
    for (std::size_t room = 0; room <= text.size(); ++room) {
        std::wstring decoded(room, L'\0');
        EXPECT_EQ(OCore::DecodeUtf8(bytes, decoded), room);
        EXPECT_EQ(decoded, text.substr(0, room));
    }
    for (std::size_t room = 0; room <= bytes.size(); ++room) {
        std::string encoded(room, '\0');
        EXPECT_EQ(OCore::EncodeUtf8(text, encoded), room);
        EXPECT_EQ(encoded, bytes.substr(0, room));
    }
}

} // namespace
