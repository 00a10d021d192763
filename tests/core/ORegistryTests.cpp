// ORegistry's calls on real keys: opening, reading, writing, result codes and bounds.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/ORegistry.h"
#include "core/OString.h"
#include "tests/kit/KeyRights.h"
#include "tests/kit/Owners.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

/// A key name that no other test has.
std::wstring Unique() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return L"Kemba " + std::wstring(test.begin(), test.end());
}

/// A key of the test's own under the current user, and its path.
class OwnKey : public ScratchKey {
  public:
    OwnKey() : ScratchKey(HKEY_CURRENT_USER, L"Software\\" + Unique()) {}
    OString Path(const std::wstring& rest = L"") const {
        return (L"CURRENT_USER:Software/" + Unique() + L"/" + rest).c_str();
    }
};

/// A REG_SZ of that many bytes: letters and a terminator.
RegistryData TextOfBytes(std::size_t bytes) {
    return RegistryData::OfText(std::wstring(bytes / sizeof(wchar_t) - 1, L'x'));
}

TEST(ORegistry, ReadsAValueOfAKeyUnderTheCurrentUser) {
    const OwnKey key;
    key.Set(L"Y", RegistryData::OfDword(0x12345678));
    std::uint32_t value = 0;
    EXPECT_EQ(ORegistry().ReadValue(key.Path(L"Y"), &value, sizeof(value)), 4);
    EXPECT_EQ(value, 0x12345678U);
}

TEST(ORegistry, ReadsValuesOfAnyType) {
    const OwnKey key;
    const std::vector<BYTE> bytes{1, 0, 0, 0};
    constexpr DWORD kTypes[] = {REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, 77};
    for (const DWORD type : kTypes) {
        SCOPED_TRACE(type);
        key.Set(L"V", RegistryData::OfBytes(type, bytes));
        std::vector<BYTE> read(4);
        EXPECT_EQ(ORegistry().ReadValue(key.Path(L"V"), read.data(), 4), 4);
        EXPECT_EQ(read, bytes);
        EXPECT_EQ(ORegistry().ReadString(key.Path(L"V"), "default"), OString(L"\1"));
    }
}

TEST(ORegistry, ReadsNoMoreThanTheValueHolds) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfBytes(REG_BINARY, {1, 2, 3}));
    std::vector<BYTE> read(5, 0xAA);
    EXPECT_EQ(ORegistry().ReadValue(key.Path(L"V"), read.data(), 5), 3);
    EXPECT_EQ(read, (std::vector<BYTE>{1, 2, 3, 0xAA, 0xAA}));
}

TEST(ORegistry, ReadsAnEmptyValueAsNoBytes) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfBytes(REG_BINARY, {}));
    BYTE byte = 0xAA;
    EXPECT_EQ(ORegistry().ReadValue(key.Path(L"V"), &byte, 1), 0);
    EXPECT_EQ(ORegistry().ReadValue(key.Path(L"V"), nullptr, 0), 0);
    EXPECT_EQ(byte, 0xAA);
    EXPECT_EQ(ORegistry().ReadString(key.Path(L"V"), "default"), OString("default"));
}

TEST(ORegistry, TellsWhyAReadFailed) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfBytes(REG_BINARY, {1, 2, 3}));
    const struct {
        OString path;
        std::int32_t result;
    } rows[] = {
        {key.Path(L"missing"), ORegistry::kFailed},
        {"no separator", ORegistry::kBadPath},
        {"", ORegistry::kBadPath},
        {key.Path(L"Missing/V"), ORegistry::kKeyNotOpen},
        {"7:Key/Value", ORegistry::kKeyNotOpen},
        {"2:Value", ORegistry::kKeyNotOpen},
        {"Key/Value", ORegistry::kKeyNotOpen},
        {key.Path(L"V"), ORegistry::kMoreData},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path.Narrow());
        BYTE bytes[2] = {0xAA, 0xAA};
        EXPECT_EQ(ORegistry().ReadValue(row.path, bytes, 2), row.result);
        EXPECT_EQ(bytes[0], 0xAA);
        EXPECT_EQ(ORegistry().ReadValue(row.path, nullptr, 0), row.result);
    }
    EXPECT_EQ(ORegistry::kFailed, -1);
    EXPECT_EQ(ORegistry::kBadPath, -2);
    EXPECT_EQ(ORegistry::kKeyNotOpen, -3);
    EXPECT_EQ(ORegistry::kMoreData, -4);
}

TEST(ORegistry, ReadsTheDefaultValueOfItsBasePath) {
    const OwnKey key;
    key.Set(L"", RegistryData::OfText(L"default value"));
    key.Set(L"V", RegistryData::OfText(L"other"), L"Sub");
    const ORegistry registry(key.Path());
    EXPECT_EQ(registry.ReadString("", "none"), OString("default value"));
    EXPECT_EQ(registry.ReadString("Sub\\V", "none"), OString("other"));
}

TEST(ORegistry, ReadsUnderTheDriverKeysOfEitherSpelling) {
    const RegistryPreset preset(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks", Unique());
    preset.Set(RegistryData::OfDword(5));
    for (const wchar_t* const prefix : {L"local:DebugLogMasks\\", L"LOCAL:DebugLogMasks/"}) {
        std::uint32_t value = 0;
        EXPECT_EQ(ORegistry().ReadValue(OString(prefix) + Unique().c_str(), &value, 4), 4);
        EXPECT_EQ(value, 5U);
    }
}

TEST(ORegistry, ReadsUnderEachRoot) {
    const struct {
        HKEY root;
        const wchar_t* key;
        const char* paths[4];
    } rows[] = {
        {HKEY_CLASSES_ROOT, L"", {"0:", "CLASSES_ROOT:", "FOO:", "foo:"}},
        {HKEY_CURRENT_USER,
         L"Software\\",
         {"1:Software/", "CURRENT_USER:Software/", "1:Software\\", "01:Software/"}},
        {HKEY_LOCAL_MACHINE,
         L"SOFTWARE\\",
         {"2:SOFTWARE/", "LOCAL_MACHINE:SOFTWARE/", "2:Software/", "2:SOFTWARE\\"}},
        {HKEY_USERS,
         L".Default\\Software\\",
         {"3:.Default/Software/", "USERS:.Default/Software/", "users:.Default/Software/",
          "3:.Default\\Software\\"}},
    };
    for (const auto& row : rows) {
        const ScratchKey key(row.root, row.key + Unique());
        key.Set(L"V", RegistryData::OfText(L"found"));
        for (const char* const path : row.paths) {
            SCOPED_TRACE(path);
            EXPECT_EQ(ORegistry().ReadString(OString(path) + Unique().c_str() + "/V", "none"),
                      OString("found"));
        }
    }
}

TEST(ORegistry, ReadsKeysAndValuesWithEscapedNames) {
    const OwnKey key;
    key.Set(L"Z", RegistryData::OfText(L"slash"), L"A/B");
    key.Set(L"Value:name", RegistryData::OfText(L"colon"));
    key.Set(L"%41", RegistryData::OfText(L"percent first"));
    key.Set(L"5%x", RegistryData::OfText(L"percent"));
    const struct {
        const wchar_t* path;
        const char* text;
    } rows[] = {
        {L"A//B/Z", "slash"},      {L"A%2FB/Z", "slash"},     {L"Value%3Aname", "colon"},
        {L"Value::name", "colon"}, {L"%41", "percent first"}, {L"5%%x", "percent"},
        {L"5%25x", "percent"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(ORegistry().ReadString(key.Path(row.path), "none"), OString(row.text));
    }
}

TEST(ORegistry, ReadsATextUpToItsTerminator) {
    const OwnKey key;
    const struct {
        std::vector<BYTE> bytes;
        const wchar_t* text;
    } rows[] = {
        {{'a', 0, 'b', 0}, L"ab"},                                    // no terminator of its own
        {{'a', 0, 0, 0, 'b', 0}, L"a"}, {{0, 0}, L""}, {{'a'}, L"a"}, // half a unit
        {{'a', 0, 0xAC}, L"a\xAC"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        key.Set(L"V", RegistryData::OfBytes(REG_BINARY, row.bytes));
        EXPECT_STREQ(ORegistry().ReadString(key.Path(L"V"), "none").Wide(), row.text);
    }
}

TEST(ORegistry, ReadsATextUpToItsLastBound) {
    const OwnKey key;
    for (const std::size_t bytes : {8188U, 8190U, 8192U, 131'068U, 131'070U}) {
        SCOPED_TRACE(bytes);
        key.Set(L"V", TextOfBytes(bytes));
        EXPECT_EQ(ORegistry().ReadString(key.Path(L"V"), "none").GetLength(), bytes / 2 - 1);
    }
    for (const std::size_t bytes : {131'071U, 131'072U}) {
        SCOPED_TRACE(bytes);
        key.Set(L"V", RegistryData::OfBytes(REG_BINARY, std::vector<BYTE>(bytes, 1)));
        EXPECT_EQ(ORegistry().ReadString(key.Path(L"V"), "none"), OString("none"));
    }
}

TEST(ORegistry, ReadsFullBuffersWithATerminatorBehind) {
    const OwnKey key;
    for (const std::size_t bytes : {8190U, 8191U, 131'070U}) {
        SCOPED_TRACE(bytes);
        key.Set(L"V", RegistryData::OfBytes(REG_BINARY, std::vector<BYTE>(bytes, 1)));
        EXPECT_EQ(ORegistry().ReadString(key.Path(L"V"), "none").GetLength(), (bytes + 1) / 2);
    }
}

TEST(ORegistry, GivesTheDefaultTextForEveryFailure) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfDword(1));
    const OString missing = "default";
    for (const OString& path :
         {key.Path(L"missing"), key.Path(L"Missing/V"), OString("no separator"), OString("2:V")}) {
        SCOPED_TRACE(path.Narrow());
        EXPECT_EQ(ORegistry().ReadString(path, missing).GetBody(), missing.GetBody());
    }
}

TEST(ORegistry, WritesADwordMakingItsKey) {
    const OwnKey key;
    EXPECT_EQ(ORegistry().WriteDword(key.Path(L"Sub/V"), 0xE0000000), 4);
    EXPECT_EQ(key.Get(L"V", L"Sub"), RegistryData::OfDword(0xE0000000));
    EXPECT_EQ(ORegistry().WriteDword(key.Path(L"Sub\\V"), 7), 4);
    EXPECT_EQ(key.Get(L"V", L"Sub"), RegistryData::OfDword(7));
    key.Set(L"T", RegistryData::OfText(L"text"));
    EXPECT_EQ(ORegistry().WriteDword(key.Path(L"T"), 8), 4);
    EXPECT_EQ(key.Get(L"T"), RegistryData::OfDword(8));
}

TEST(ORegistry, FoldsEveryFailureToWriteIntoOne) {
    for (const char* const path : {"no separator", "", "7:Key/Value", "2:Value", "Key/Value"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(ORegistry().WriteDword(path, 1), -1);
    }
}

TEST(ORegistry, MakesAKeyOnlyWhenAskedTo) {
    const OwnKey key;
    const OString path = (L"1:Software/" + Unique()).c_str();
    EXPECT_EQ(ORegistry().OpenKey(path, false), nullptr);
    EXPECT_FALSE(key.Exists());
    ASSERT_TRUE(UniqueKey(ORegistry().OpenKey(path, true)));
    EXPECT_TRUE(key.Exists());
    const UniqueKey opened(ORegistry().OpenKey(path, false));
    ASSERT_TRUE(opened);
    EXPECT_EQ(RegSetValueExW(opened.get(), L"V", 0, REG_NONE, nullptr, 0), ERROR_SUCCESS);
}

TEST(ORegistry, OpensAKeyThatMayNotBeWrittenToRead) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfDword(1));
    const KeyRights protection(HKEY_CURRENT_USER, L"Software\\" + Unique(), KEY_READ);

    const UniqueKey readable(ORegistry().OpenKey((L"1:Software/" + Unique()).c_str(), true));
    ASSERT_TRUE(readable);
    EXPECT_EQ(RegSetValueExW(readable.get(), L"W", 0, REG_NONE, nullptr, 0), ERROR_ACCESS_DENIED);
    std::uint32_t value = 0;
    EXPECT_EQ(ORegistry().ReadValue(key.Path(L"V"), &value, 4), 4);
    EXPECT_EQ(value, 1U);
    EXPECT_EQ(ORegistry().WriteDword(key.Path(L"V"), 2), -1);
    EXPECT_EQ(key.Get(L"V"), RegistryData::OfDword(1));
}

TEST(ORegistry, GivesNoKeyForAPathWithoutRootOrSubkey) {
    for (const char* const path : {"", "Key", "2:", "9:Key"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(ORegistry().OpenKey(path, true), nullptr);
    }
}

TEST(ORegistry, LeavesNoKeyOpen) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfDword(1));
    DWORD before = 0;
    DWORD after = 0;
    std::uint32_t value = 0;
    ORegistry().ReadValue(key.Path(L"V"), &value, 4);
    ASSERT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &before));
    for (int round = 0; round < 20; ++round) {
        ORegistry().ReadValue(key.Path(L"V"), &value, 4);
        ORegistry().ReadValue(key.Path(L"missing"), &value, 4);
        ORegistry().ReadString(key.Path(L"V"), "");
        ORegistry().WriteDword(key.Path(L"V"), 2);
    }
    ASSERT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &after));
    EXPECT_EQ(after, before);
}

} // namespace
