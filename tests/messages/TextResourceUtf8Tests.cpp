// The catalogue under an ANSI code page of UTF-8.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "messages/TextResource.h"

namespace {

struct Lookup : TextResource {
    std::wstring operator()(std::string_view catalogue, const char* key) {
        return FindSection(catalogue.data(), catalogue.data() + catalogue.size(), key).Wide();
    }
};

TEST(CodePage65001, IsInForce) {
    ASSERT_EQ(GetACP(), 65001U);
}

TEST(CodePage65001, ALineThatIsCutInsideACharacterEndsThere) {
    // What ends in the first of a character's three bytes may swallow the terminator; the longer line before
    // is not to show.
    const std::wstring body = Lookup()("#a\r\none longer line\r\nx\xE2", "a");
    EXPECT_EQ(body.substr(0, 18), L"one longer line\r\nx");
    EXPECT_EQ(body.find(L"longer", 18), body.npos);
    EXPECT_LE(body.size(), 19U);
}

TEST(CodePage65001, ALineOf511BytesThatEndsInsideACharacterEndsThere) {
    const std::string piece(510, 'x');
    const std::wstring body = Lookup()("#a\r\n" + piece + "\xE2\x82\xAC\r\n", "a");
    EXPECT_EQ(body.substr(0, 510), std::wstring(510, L'x'));
    EXPECT_LE(body.size(), 514U); // what the two halves of the character became
}

} // namespace
