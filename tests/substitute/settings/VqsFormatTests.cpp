// The settings file's bytes.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "core/Crc32.h"
#include "substitute/base/Bytes.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/VqsFormat.h"
#include "substitute/spooler/Spooler.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

HRESULT DecodeStatus(const Bytes& bytes) {
    return FailureOf([&] { DecodeVqs(bytes); }).status;
}

HRESULT EncodeStatus(const Settings& settings) {
    return FailureOf([&] { EncodeVqs(settings); }).status;
}

constexpr HRESULT kBadData = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);

TEST(VqsFormat, GivesBackWhatItWasGiven) {
    Settings bare{{L"D", 0}, {}, {}, {}};
    for (const Settings& settings : {SettingsOf(MakeRichState()), SettingsOf(MakeOtherState()), bare}) {
        EXPECT_EQ(DecodeVqs(EncodeVqs(settings)), settings);
    }
}

TEST(VqsFormat, StandsByteForByteAsDocumented) {
    const Settings settings{
        {L"Zip\x00E9", 0x0102030405060708}, {}, {}, {{kDriverDataKey, L"A", REG_DWORD, {1, 2, 3, 4}}}};
    Bytes expected = {'K', 'V', 'Q', 'S', 13,  10, 26,  0,                  // magic
                      1,   0,   0,   0,   108, 0,  0,   0,                  // format version, size
                      4,   0,   0,   0,   'Z', 0,  'i', 0, 'p', 0, 0xE9, 0, // driver
                      8,   7,   6,   5,   4,   3,  2,   1,                  // its version
                      0,   0,   0,   0,   0,   0,  0,   0,                  // no device modes
                      1,   0,   0,   0,                                     // one value
                      17,  0,   0,   0};
    for (const char letter : std::string_view("PrinterDriverData")) {
        expected.insert(expected.end(), {static_cast<BYTE>(letter), 0});
    }
    expected.insert(expected.end(), {1, 0, 0, 0, 'A', 0, 4, 0, 0, 0, 4, 0, 0, 0, 1, 2, 3, 4});
    expected.insert(expected.end(), {0x4F, 0x0D, 0xC0, 0x53}); // checksum
    EXPECT_EQ(EncodeVqs(settings), expected);
}

TEST(VqsFormat, EveryFlippedBitIsNoticed) {
    const Bytes good = EncodeVqs(SettingsOf(MakeRichState()));
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        Bytes damaged = good;
        damaged[bit / 8] = static_cast<BYTE>(damaged[bit / 8] ^ 1 << bit % 8);
        const bool ofVersion = bit / 32 == 2;
        ASSERT_EQ(DecodeStatus(damaged), ofVersion ? HRESULT_FROM_WIN32(ERROR_REVISION_MISMATCH) : kBadData)
            << "bit " << bit;
    }
}

TEST(VqsFormat, EveryCutIsNoticedEvenWithSizeAndChecksumMadeToFit) {
    const Bytes good = EncodeVqs(SettingsOf(MakeRichState()));
    for (std::size_t size = 0; size < good.size(); ++size) {
        const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(DecodeStatus(cut), kBadData) << size;
        ASSERT_EQ(DecodeStatus(Sealed(cut)), kBadData) << size;
    }
}

TEST(VqsFormat, WhatFollowsTheLastValueIsRefused) {
    Bytes bytes = EncodeVqs(SettingsOf(MakeRichState()));
    bytes.push_back(0);
    EXPECT_EQ(DecodeStatus(bytes), kBadData);
    EXPECT_EQ(DecodeStatus(Sealed(bytes)), kBadData);
}

TEST(VqsFormat, ASizeThatIsNotTheFilesIsRefused) {
    const Bytes good = EncodeVqs(SettingsOf(MakeRichState()));
    for (const std::size_t size : {good.size() - 1, good.size() + 1}) {
        Bytes bytes = good;
        PutNumber(bytes, 12, static_cast<std::uint32_t>(size));
        PutNumber(bytes, bytes.size() - 4, OCore::Crc32(std::span(bytes).first(bytes.size() - 4)));
        EXPECT_EQ(DecodeStatus(bytes), kBadData) << size;
    }
}

TEST(VqsFormat, AFileHoldsAsManyValuesAsDocumented) {
    Settings settings = SettingsOf({});
    for (std::uint32_t index = 0; index < 4096; ++index) {
        settings.values.push_back({kDriverDataKey, std::to_wstring(100000 + index), REG_NONE, {}});
    }
    EXPECT_EQ(EncodeStatus(settings), S_OK);
    settings.values.push_back({kDriverDataKey, L"200000", REG_NONE, {}});
    EXPECT_EQ(EncodeStatus(settings), kBadData);
}

TEST(VqsFormat, AnotherFormatVersionIsRefusedAsSuch) {
    Bytes bytes = EncodeVqs(SettingsOf(MakeRichState()));
    PutNumber(bytes, 8, 2);
    EXPECT_EQ(DecodeStatus(Sealed(bytes)), HRESULT_FROM_WIN32(ERROR_REVISION_MISMATCH));
}

TEST(VqsFormat, MoreThanTheLargestFileIsRefusedUnseen) {
    EXPECT_EQ(DecodeStatus(Bytes(kMaximumVqsSize + 1)), HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
}

TEST(VqsFormat, SettingsThatNoFileMayHoldAreNotWritten) {
    const PrinterValue value{kDriverDataKey, L"A", REG_DWORD, {1, 0, 0, 0}};
    const auto withValue = [&](const std::function<void(PrinterValue&)>& change) {
        Settings settings = SettingsOf({});
        settings.values = {value};
        change(settings.values[0]);
        return settings;
    };
    const auto withMode = [](const std::function<void(Bytes&)>& change) {
        Settings settings = SettingsOf({});
        settings.userMode = MakeMode(1);
        change(*settings.userMode);
        return settings;
    };
    EXPECT_EQ(EncodeStatus(withValue([](PrinterValue&) {})), S_OK);
    EXPECT_EQ(EncodeStatus(withMode([](Bytes&) {})), S_OK);
    Settings nameless = SettingsOf({});
    nameless.driver.name.clear();
    Settings twice = withValue([](PrinterValue&) {});
    twice.values.push_back({L"PRINTERDRIVERDATA", L"a", REG_SZ, {}});
    Settings disordered = withValue([](PrinterValue& first) { first.name = L"B"; });
    disordered.values.push_back(value);
    Settings many = SettingsOf({});
    for (std::uint32_t index = 0; index <= kMaximumVqsValues; ++index) {
        many.values.push_back({kDriverDataKey, std::to_wstring(100000 + index), REG_NONE, {}});
    }
    const std::pair<const char*, Settings> rows[] = {
        {"no driver", nameless},
        {"a value twice", twice},
        {"values out of order", disordered},
        {"too many values", many},
        {"another key", withValue([](PrinterValue& bad) { bad.key = L"DsSpooler"; })},
        {"a longer key", withValue([](PrinterValue& bad) { bad.key = L"PrinterDriverDataX"; })},
        {"no key", withValue([](PrinterValue& bad) { bad.key.clear(); })},
        {"a key with an empty end", withValue([](PrinterValue& bad) { bad.key += L"\\"; })},
        {"a key with an empty part", withValue([](PrinterValue& bad) { bad.key += L"\\\\A"; })},
        {"a zero in a name", withValue([](PrinterValue& bad) { bad.name = std::wstring(1, L'\0'); })},
        {"an endless name", withValue([](PrinterValue& bad) { bad.name.assign(kMaximumVqsText + 1, L'a'); })},
        {"an unknown type", withValue([](PrinterValue& bad) { bad.type = 12; })},
        {"a mode longer than it says", withMode([](Bytes& mode) { mode.push_back(0); })},
        {"a mode shorter than it says", withMode([](Bytes& mode) { mode.pop_back(); })},
        {"a mode without room for its sizes", withMode([](Bytes& mode) { mode.resize(70); })},
        {"a mode without the common fields", withMode([](Bytes& mode) {
             mode.resize(100);
             mode[offsetof(DEVMODEW, dmSize)] = 92;
         })},
    };
    for (const auto& [name, settings] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(EncodeStatus(settings), kBadData);
    }
    EXPECT_EQ(EncodeStatus(withValue([](PrinterValue& bad) { bad.data.resize(kMaximumVqsSize); })),
              HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
}

} // namespace
