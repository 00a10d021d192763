// Registry values of every type and of sizes that nobody expects, and keys that may not be used.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "core/OEventLog.h"
#include "core/ORegistry.h"
#include "tests/core/EventLogKit.h"
#include "tests/kit/KeyRights.h"
#include "tests/kit/Owners.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

constexpr std::size_t kLongest = 16; // bytes of a value

/// Letters of both cases without a terminator; a REG_DWORD of them is no mask of anybody's.
std::vector<BYTE> Letters(std::size_t size) {
    std::vector<BYTE> bytes;
    for (std::size_t index = 0; index < size; ++index) {
        bytes.push_back(static_cast<BYTE>((index % 2 == 0 ? 'A' : 0x30) + index));
    }
    return bytes;
}

/// What four bytes are as a mask.
std::uint32_t MaskFrom(const std::vector<BYTE>& bytes) {
    std::uint32_t mask = 0;
    std::memcpy(&mask, bytes.data(), sizeof(mask));
    return mask;
}

/// Sets a value of an existing key to exactly these bytes: RegSetValueEx ends a text that has no end.
void SetValueExactly(HKEY root, const std::wstring& key, std::wstring name, const RegistryData& data) {
    struct CountedText {
        USHORT size;
        USHORT capacity;
        wchar_t* text;
    };
    using SetValue = LONG(NTAPI*)(HANDLE, const CountedText*, ULONG, ULONG, const void*, ULONG);
    const auto set = reinterpret_cast<SetValue>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtSetValueKey")));
    const UniqueKey opened = OpenKey(root, key, KEY_WRITE);
    const auto size = static_cast<USHORT>(name.size() * sizeof(wchar_t));
    const CountedText counted{size, size, name.data()};
    EXPECT_EQ(
        set(opened.get(), &counted, 0, data.type, data.bytes.data(), static_cast<ULONG>(data.bytes.size())),
        0);
    EXPECT_EQ(GetRegistryData(root, key, name), data);
}

/// The stored mask of the test's source.
class ExactMask : public StoredMask {
  public:
    void Set(const RegistryData& data) const {
        const std::wstring name = Source().Wide();
        SetValueExactly(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks", name, data);
    }
};

/// Values of every type, REG_NONE to REG_QWORD, and of 0 to 16 bytes.
template<class Work>
void ForEveryValue(Work&& work) {
    for (DWORD type = REG_NONE; type <= REG_QWORD; ++type) {
        for (std::size_t size = 0; size <= kLongest; ++size) {
            SCOPED_TRACE("type " + std::to_string(type) + ", " + std::to_string(size) + " bytes");
            work(RegistryData::OfBytes(type, Letters(size)));
        }
    }
}

/// A key of the test's own under the current user, and the path of a value in it.
class OwnKey : public ScratchKey {
  public:
    OwnKey() : ScratchKey(HKEY_CURRENT_USER, Key()) {}
    static std::wstring Key() { return L"Software\\Kemba hostile " + std::to_wstring(GetCurrentProcessId()); }
    static OString Path(const std::wstring& rest) {
        return (L"CURRENT_USER:" + Key() + L"\\" + rest).c_str();
    }
    void SetExactly(const RegistryData& data) const {
        Set(L"V", RegistryData::OfDword(0)); // which makes the key
        SetValueExactly(HKEY_CURRENT_USER, Key(), L"V", data);
    }
};

TEST(HostileRegistry, AMaskIsFourBytesOfAnyType) {
    const ExactMask stored;
    ForEveryValue([&](const RegistryData& value) {
        stored.Set(value);
        const std::uint32_t mask =
            value.bytes.size() == 4 ? MaskFrom(value.bytes) : OEventLogBase::kDefaultMask;
        OEventLogBase log(stored.Source());
        EXPECT_EQ(MaskOf(log), mask);
        EXPECT_EQ(stored.Get(), RegistryData::OfDword(mask));
    });
}

TEST(HostileRegistry, AMaskThatChangesIsFourBytesOfAnyType) {
    const ExactMask stored;
    stored.SetMask(0x1);
    std::uint64_t tick = 1'000;
    StoppedClock clock(tick);
    OEventLogBase log(stored.Source());
    ForEveryValue([&](const RegistryData& value) {
        stored.Set(value);
        clock.Show(tick += 5'001);
        EXPECT_EQ(MaskOf(log), value.bytes.size() == 4 ? MaskFrom(value.bytes) : OEventLogBase::kDefaultMask);
        EXPECT_EQ(stored.Get(), value); // a later look writes nothing
    });
    stored.Remove();
    clock.Show(tick += 5'001);
    EXPECT_EQ(MaskOf(log), OEventLogBase::kDefaultMask);
    EXPECT_EQ(stored.Get(), std::nullopt);
}

TEST(HostileRegistry, ATextIsTheBytesUpToAZeroUnit) {
    const OwnKey key;
    ForEveryValue([&](RegistryData value) {
        key.SetExactly(value);
        std::wstring text((value.bytes.size() + 1) / 2, L'\0'); // an odd last byte is half a unit
        std::copy(value.bytes.begin(), value.bytes.end(), reinterpret_cast<BYTE*>(text.data()));
        EXPECT_STREQ(ORegistry().ReadString(OwnKey::Path(L"V"), "none").Wide(),
                     value.bytes.empty() ? L"none" : text.c_str());
        for (std::size_t zero = 0; zero + 1 < value.bytes.size(); zero += 2) {
            RegistryData cut = value;
            cut.bytes[zero] = cut.bytes[zero + 1] = 0;
            key.SetExactly(cut);
            EXPECT_STREQ(ORegistry().ReadString(OwnKey::Path(L"V"), "none").Wide(),
                         text.substr(0, zero / 2).c_str());
        }
    });
}

TEST(HostileRegistry, AReadNeverGoesPastItsRoom) {
    const OwnKey key;
    ForEveryValue([&](const RegistryData& value) {
        key.SetExactly(value);
        for (std::uint32_t room = 0; room <= kLongest; ++room) {
            std::vector<BYTE> read(kLongest + 1, 0xEE);
            std::vector<BYTE> expected = read;
            const bool fits = value.bytes.size() <= room;
            if (fits) {
                std::copy(value.bytes.begin(), value.bytes.end(), expected.begin());
            }
            EXPECT_EQ(ORegistry().ReadValue(OwnKey::Path(L"V"), read.data(), room),
                      fits ? static_cast<std::int32_t>(value.bytes.size()) : ORegistry::kMoreData);
            EXPECT_EQ(read, expected);
        }
    });
}

TEST(HostileRegistry, AKeyWithoutAnyRightIsOneThatCannotBeOpened) {
    const OwnKey key;
    key.Set(L"V", RegistryData::OfDword(7));
    {
        const KeyRights none(HKEY_CURRENT_USER, OwnKey::Key(), 0);
        std::uint32_t value = 1;
        EXPECT_EQ(ORegistry().ReadValue(OwnKey::Path(L"V"), &value, sizeof(value)), ORegistry::kKeyNotOpen);
        EXPECT_EQ(value, 1U);
        EXPECT_EQ(ORegistry().ReadString(OwnKey::Path(L"V"), "none"), OString("none"));
        EXPECT_EQ(ORegistry().WriteDword(OwnKey::Path(L"V"), 8), ORegistry::kFailed);
        EXPECT_EQ(ORegistry().OpenKey((L"1:" + OwnKey::Key()).c_str(), true), nullptr);
    }
    EXPECT_EQ(key.Get(L"V"), RegistryData::OfDword(7));
}

TEST(HostileRegistry, ALogWhoseKeyIsDeniedHasTheDefaultMask) {
    const std::wstring name = L"Kemba denied " + std::to_wstring(GetCurrentProcessId());
    const std::wstring path = L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks\\" + name;
    const ScratchKey key(HKEY_LOCAL_MACHINE, path);
    key.Set(L"Source", RegistryData::OfDword(0x1));
    const OString source = (name + L"\\Source").c_str();
    StoppedClock clock(1'000);
    {
        const KeyRights none(HKEY_LOCAL_MACHINE, path, 0);
        OEventLogBase log(source);
        EXPECT_EQ(MaskOf(log), OEventLogBase::kDefaultMask);
    }
    EXPECT_EQ(key.Get(L"Source"), RegistryData::OfDword(0x1));
    {
        const KeyRights reading(HKEY_LOCAL_MACHINE, path, KEY_READ);
        OEventLogBase log(source);
        EXPECT_EQ(MaskOf(log), 0x1U);
        OEventLogBase other((name + L"\\Other").c_str()); // which cannot be stored
        EXPECT_EQ(MaskOf(other), OEventLogBase::kDefaultMask);
    }
    EXPECT_EQ(key.Get(L"Other"), std::nullopt);
    OEventLogBase log(source);
    EXPECT_EQ(MaskOf(log), 0x1U);
    {
        const KeyRights none(HKEY_LOCAL_MACHINE, path, 0);
        clock.Show(10'000);
        EXPECT_EQ(MaskOf(log), OEventLogBase::kDefaultMask);
    }
    clock.Show(20'000);
    EXPECT_EQ(MaskOf(log), 0x1U); // when it may be read again
}

} // namespace
