// Steps of a registration and their way back, in a key of the test's own in place of a hive.
#include <gtest/gtest.h>

#include <string>

#include "substitute/registration/RegistrationRecord.h"
#include "substitute/registration/RegistryKeys.h"
#include "tests/kit/Owners.h"
#include "tests/kit/RegistryPreset.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

class RegistrationRecord : public testing::Test {
  protected:
    KeyPlace At(const std::wstring& path) const { return {m_root.get(), View::Bits64, path}; }
    void Put(const std::wstring& path, const std::wstring& text) const {
        RegistryKey::Make(At(path)).Write(L"", TextValue(text));
    }
    std::wstring Get(const std::wstring& path) const { return RegistryKey::Open(At(path)).ReadText(L""); }
    bool IsThere(const std::wstring& path) const { return static_cast<bool>(RegistryKey::Open(At(path))); }
    kemba::substitute::RegistrationRecord::Text Text(const std::wstring& path, const std::wstring& text,
                                                     bool shared = false) const {
        return {At(path), L"", text, shared};
    }

    const ScratchKey m_hive{HKEY_CURRENT_USER,
                            L"Software\\kemba-record-" + std::to_wstring(GetCurrentProcessId())};
    const UniqueKey m_root = MakeKey(HKEY_CURRENT_USER, m_hive.Path(), KEY_ALL_ACCESS);
};

TEST_F(RegistrationRecord, TakesBackValuesAndTheKeysThatItMade) {
    Put(L"Folder\\Full", L"before");
    RegistryKey::Make(At(L"Folder\\Empty"));
    kemba::substitute::RegistrationRecord record(m_root.get());
    EXPECT_FALSE(record.Exists());
    record.SetProgram(L"C:\\a.exe");
    for (const wchar_t* const path : {L"Folder\\Full", L"Folder\\Empty\\New", L"Other\\New"}) {
        record.Write(Text(path, L"ours"), false);
        EXPECT_EQ(Get(path), L"ours");
    }
    EXPECT_EQ(record.Program(), L"C:\\a.exe");
    record.TakeBack(0, false);
    EXPECT_FALSE(record.Exists());
    EXPECT_EQ(Get(L"Folder\\Full"), L"before");
    EXPECT_TRUE(IsThere(L"Folder\\Empty"));
    EXPECT_FALSE(IsThere(L"Folder\\Empty\\New"));
    EXPECT_FALSE(IsThere(L"Other"));
    EXPECT_EQ(RegistryKey::Open(At(L"")).CountSubkeys(), 1u);
}

TEST_F(RegistrationRecord, KeepsTheKeysAboveItselfThatWereThere) {
    RegistryKey::Make(At(L"Software\\Brandle"));
    kemba::substitute::RegistrationRecord record(m_root.get());
    record.SetProgram(L"C:\\a.exe");
    record.TakeBack(0, false);
    EXPECT_TRUE(IsThere(L"Software\\Brandle"));
    EXPECT_FALSE(IsThere(L"Software\\Brandle\\kemba-dal"));
}

TEST_F(RegistrationRecord, LeavesWhatSomebodyElseHasWrittenSince) {
    kemba::substitute::RegistrationRecord record(m_root.get());
    record.SetProgram(L"C:\\a.exe");
    record.Write(Text(L"Changed", L"ours"), false);
    record.Write(Text(L"Grown", L"ours"), false);
    record.Write(Text(L"Shared", L"common", true), false);
    Put(L"Changed", L"theirs");
    Put(L"Grown\\Below", L"theirs");
    record.TakeBack(0, true);
    EXPECT_EQ(Get(L"Changed"), L"theirs");
    EXPECT_EQ(Get(L"Grown"), L"");
    EXPECT_EQ(Get(L"Grown\\Below"), L"theirs");
    EXPECT_EQ(Get(L"Shared"), L"common");
}

TEST_F(RegistrationRecord, TakesBackToAnEarlierState) {
    kemba::substitute::RegistrationRecord record(m_root.get());
    record.SetProgram(L"C:\\a.exe");
    record.Write(Text(L"Key", L"first"), false);
    const DWORD size = record.Size();
    record.Write(Text(L"Key", L"first"), false); // as wanted already
    EXPECT_EQ(record.Size(), size);
    record.Write(Text(L"Key", L"second"), false);
    record.Write(Text(L"Key\\Below", L"second"), false);
    record.TakeBack(size, false);
    EXPECT_EQ(record.Size(), size);
    EXPECT_EQ(Get(L"Key"), L"first");
    EXPECT_FALSE(IsThere(L"Key\\Below"));
    record.TakeBack(0, false);
    EXPECT_FALSE(IsThere(L"Key"));
}

TEST_F(RegistrationRecord, WhatWasSetAsideComesBackWhole) {
    for (const bool partly : {false, true}) {
        Put(L"Class", L"theirs");
        Put(L"Class\\Server\\Deep", L"theirs");
        kemba::substitute::RegistrationRecord record(m_root.get());
        record.SetProgram(L"C:\\a.exe");
        record.SetAside(At(L"Class"));
        EXPECT_FALSE(IsThere(L"Class"));
        if (partly) { // as if its removal had failed half way
            Put(L"Class\\Server", L"");
        }
        record.TakeBack(0, false);
        EXPECT_EQ(Get(L"Class"), L"theirs");
        EXPECT_EQ(Get(L"Class\\Server\\Deep"), L"theirs");
    }
}

TEST_F(RegistrationRecord, WhatWasSetAsideDoesNotComeBackOverAnother) {
    Put(L"Class\\InprocServer32", L"first");
    Put(L"Free\\InprocServer32", L"first");
    kemba::substitute::RegistrationRecord record(m_root.get());
    record.SetProgram(L"C:\\a.exe");
    record.SetAside(At(L"Class"));
    record.SetAside(At(L"Free"));
    Put(L"Class\\LocalServer32", L"second");
    record.TakeBack(0, true);
    EXPECT_FALSE(IsThere(L"Class\\InprocServer32"));
    EXPECT_EQ(Get(L"Class\\LocalServer32"), L"second");
    EXPECT_EQ(Get(L"Free\\InprocServer32"), L"first");
}

TEST_F(RegistrationRecord, WhatItAdoptsGoesAsIfItHadWrittenIt) {
    Put(L"Software\\Classes\\CLSID\\{x}\\LocalServer32", L"ours");
    kemba::substitute::RegistrationRecord record(m_root.get());
    record.SetProgram(L"C:\\a.exe");
    record.Write(Text(L"Software\\Classes\\CLSID\\{x}\\LocalServer32", L"ours"), true);
    record.TakeBack(0, false);
    EXPECT_TRUE(IsThere(L"Software\\Classes\\CLSID"));
    EXPECT_FALSE(IsThere(L"Software\\Classes\\CLSID\\{x}"));
}

} // namespace
