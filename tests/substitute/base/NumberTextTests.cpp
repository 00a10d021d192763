// Numbers in words.
#include <gtest/gtest.h>

#include <cstdint>

#include "substitute/base/NumberText.h"

using namespace kemba::substitute;

namespace {

TEST(NumberText, IsDecimal) {
    EXPECT_EQ(NumberText(0), L"0");
    EXPECT_EQ(NumberText(9), L"9");
    EXPECT_EQ(NumberText(10), L"10");
    EXPECT_EQ(NumberText(UINT32_MAX), L"4294967295");
    EXPECT_EQ(NumberText(UINT64_MAX), L"18446744073709551615");
}

TEST(NumberText, HasTheDigitsThatItIsGiven) {
    EXPECT_EQ(NumberText(0, 1, kHexadecimalDigits), L"0");
    EXPECT_EQ(NumberText(0x80070005, 1, kHexadecimalDigits), L"80070005");
    EXPECT_EQ(NumberText(0xFEDCBA9876543210, 1, kHexadecimalDigits), L"FEDCBA9876543210");
    EXPECT_EQ(NumberText(UINT64_MAX, 1, L"01").size(), 64U);
}

TEST(NumberText, HasZerosInFrontUpToAWidth) {
    EXPECT_EQ(NumberText(0, 4), L"0000");
    EXPECT_EQ(NumberText(42, 6), L"000042");
    EXPECT_EQ(NumberText(0xAB, 4, kHexadecimalDigits), L"00AB");
    EXPECT_EQ(NumberText(2026, 4), L"2026");
    EXPECT_EQ(NumberText(30827, 4), L"30827");
}

} // namespace
