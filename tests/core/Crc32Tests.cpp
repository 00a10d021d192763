// The checksum against values computed elsewhere.
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <string_view>
#include <vector>

#include "core/Crc32.h"

namespace {

std::uint32_t CrcOf(std::string_view text) {
    return OCore::Crc32({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

TEST(Crc32, HasTheStandardsCheckValue) {
    EXPECT_EQ(CrcOf("123456789"), 0xCBF43926U);
}

TEST(Crc32, CountsEveryByteAndItsPlace) {
    EXPECT_EQ(CrcOf(""), 0U);
    EXPECT_EQ(CrcOf("a"), 0xE8B7BE43U);
    EXPECT_EQ(CrcOf({"\0", 1}), 0xD202EF8DU);
    EXPECT_EQ(CrcOf("The quick brown fox jumps over the lazy dog"), 0x414FA339U);
    std::vector<unsigned char> every(256);
    std::iota(every.begin(), every.end(), static_cast<unsigned char>(0));
    EXPECT_EQ(OCore::Crc32(every), 0x29058C73U);
}

} // namespace
