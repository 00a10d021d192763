// On whose behalf the server works, and who may call it.
#include <objbase.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/registration/ServerIdentity.h"
#include "substitute/server/ProcessSecurity.h"
#include "tests/kit/Owners.h"
#include "tests/kit/RegistryPreset.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

HRESULT StatusOfRefusal(const ApplicationIdentity& identity) {
    try {
        RefuseAccount(identity);
        return S_OK;
    } catch (const Failure& failure) {
        const std::wstring& account = identity.localService.empty() ? identity.runAs : identity.localService;
        EXPECT_NE(failure.reason.find(L'"' + account + L'"'), std::wstring::npos);
        return failure.status;
    }
}

TEST(ApplicationIdentity, AnyAccountIsRefusedAndNoneIsNot) {
    EXPECT_EQ(StatusOfRefusal({}), S_OK);
    for (const wchar_t* const account : {L"Interactive User", L"interactive user", L"DOMAIN\\operator",
                                         L"nt authority\\localservice", L" "}) {
        EXPECT_EQ(StatusOfRefusal({.runAs = account, .localService = L""}), CO_E_WRONG_SERVER_IDENTITY);
    }
    EXPECT_EQ(StatusOfRefusal({.runAs = L"", .localService = L"SomeService"}), CO_E_WRONG_SERVER_IDENTITY);
}

/// A root of the test's own, in which the application's key may be written.
class IdentityKey : public testing::Test {
  protected:
    void Set(const wchar_t* name, DWORD type, const std::wstring& text) {
        RegistryData data = RegistryData::OfText(text);
        data.type = type;
        SetRegistryData(m_root.get(), m_key, name, data);
    }

    const ScratchKey m_scratch{HKEY_CURRENT_USER,
                               L"Software\\kemba identity test " + std::to_wstring(GetCurrentProcessId())};
    const UniqueKey m_root = MakeKey(HKEY_CURRENT_USER, m_scratch.Path(), KEY_ALL_ACCESS);
    const std::wstring m_key = L"Software\\Classes\\AppID\\" + Braced(kApplication);
};

TEST_F(IdentityKey, WithoutTheKeyOrItsValuesNoAccountIsSet) {
    EXPECT_EQ(ReadApplicationIdentity(m_root.get()).runAs, L"");
    Set(L"", REG_SZ, L"a name");
    EXPECT_EQ(ReadApplicationIdentity(m_root.get()).runAs, L"");
    EXPECT_EQ(ReadApplicationIdentity(m_root.get()).localService, L"");
}

TEST_F(IdentityKey, ReadsTheAccountAndTheService) {
    Set(L"RunAs", REG_SZ, L"Interactive User");
    Set(L"LocalService", REG_SZ, L"SomeService");
    EXPECT_EQ(ReadApplicationIdentity(m_root.get()).runAs, L"Interactive User");
    EXPECT_EQ(ReadApplicationIdentity(m_root.get()).localService, L"SomeService");
}

TEST_F(IdentityKey, WhatCannotBeReadAsATextIsAFailure) {
    Set(L"RunAs", REG_BINARY, L"x");
    EXPECT_THROW(ReadApplicationIdentity(m_root.get()), Failure);
}

using Sid = std::array<BYTE, SECURITY_MAX_SID_SIZE>;

Sid MakeSid(WELL_KNOWN_SID_TYPE which) {
    Sid sid = {};
    auto size = static_cast<DWORD>(sid.size());
    EXPECT_TRUE(CreateWellKnownSid(which, nullptr, sid.data(), &size));
    return sid;
}

constexpr DWORD kCall = COM_RIGHTS_EXECUTE | COM_RIGHTS_EXECUTE_LOCAL | COM_RIGHTS_EXECUTE_REMOTE;

/// Rights that the descriptor gives to the test's own process for a call.
DWORD OwnRights(PSECURITY_DESCRIPTOR descriptor) {
    HANDLE opened = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_DUPLICATE, &opened));
    const UniqueHandle primary(opened);
    HANDLE copied = nullptr;
    EXPECT_TRUE(DuplicateToken(primary.get(), SecurityIdentification, &copied));
    const UniqueHandle token(copied);
    GENERIC_MAPPING mapping = {};
    PRIVILEGE_SET privileges = {};
    DWORD size = sizeof(privileges);
    DWORD granted = 0;
    BOOL allowed = FALSE;
    EXPECT_TRUE(AccessCheck(descriptor, token.get(), kCall, &mapping, &privileges, &size, &granted, &allowed))
        << GetLastError();
    return allowed ? granted : 0;
}

TEST(AccessRights, TheServersUserMayCall) {
    const auto user = ReadOwnToken(TokenUser);
    const auto integrity = ReadOwnToken(TokenIntegrityLevel);
    AccessRights rights(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid,
                        reinterpret_cast<const TOKEN_MANDATORY_LABEL*>(integrity.data())->Label.Sid);
    EXPECT_EQ(OwnRights(rights.Get()), kCall);
}

TEST(AccessRights, NameTheUserTheSystemAndAdministratorsAndNobodyElse) {
    Sid user = MakeSid(WinLocalServiceSid); // in place of any user
    Sid integrity = MakeSid(WinMediumLabelSid);
    AccessRights rights(user.data(), integrity.data());
    ASSERT_TRUE(IsValidSecurityDescriptor(rights.Get()));
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* allowed = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(rights.Get(), &present, &allowed, &defaulted));
    ASSERT_TRUE(present);
    ASSERT_TRUE(allowed);
    Sid expected[] = {user, MakeSid(WinLocalSystemSid), MakeSid(WinBuiltinAdministratorsSid)};
    ASSERT_EQ(allowed->AceCount, std::size(expected));
    for (DWORD index = 0; index < allowed->AceCount; ++index) {
        void* entry = nullptr;
        ASSERT_TRUE(GetAce(allowed, index, &entry));
        auto* const ace = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        EXPECT_EQ(ace->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
        EXPECT_EQ(ace->Mask, kCall);
        EXPECT_TRUE(EqualSid(&ace->SidStart, expected[index].data()));
    }
}

TEST(AccessRights, HaveAnOwnerAGroupAndTheIntegrityLevelThatCallersNeed) {
    Sid user = MakeSid(WinLocalServiceSid);
    Sid integrity = MakeSid(WinHighLabelSid);
    AccessRights rights(user.data(), integrity.data());
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ASSERT_TRUE(GetSecurityDescriptorControl(rights.Get(), &control, &revision));
    EXPECT_EQ(control & SE_SELF_RELATIVE, 0); // COM takes the absolute form only
    PSID owner = nullptr;
    PSID group = nullptr;
    BOOL defaulted = FALSE;
    ASSERT_TRUE(GetSecurityDescriptorOwner(rights.Get(), &owner, &defaulted));
    ASSERT_TRUE(GetSecurityDescriptorGroup(rights.Get(), &group, &defaulted));
    EXPECT_TRUE(EqualSid(owner, user.data()));
    EXPECT_TRUE(EqualSid(group, user.data()));
    BOOL present = FALSE;
    ACL* labels = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorSacl(rights.Get(), &present, &labels, &defaulted));
    ASSERT_TRUE(present);
    ASSERT_EQ(labels->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(labels, 0, &entry));
    auto* const ace = static_cast<SYSTEM_MANDATORY_LABEL_ACE*>(entry);
    EXPECT_EQ(ace->Header.AceType, SYSTEM_MANDATORY_LABEL_ACE_TYPE);
    EXPECT_EQ(ace->Mask, DWORD{SYSTEM_MANDATORY_LABEL_NO_EXECUTE_UP});
    EXPECT_TRUE(EqualSid(&ace->SidStart, integrity.data()));
}

TEST(AccessRights, AStrangerMayNotCall) {
    // The test's process runs as an administrator under some systems; then nobody here is a stranger.
    Sid administrators = MakeSid(WinBuiltinAdministratorsSid);
    BOOL member = FALSE;
    ASSERT_TRUE(CheckTokenMembership(nullptr, administrators.data(), &member));
    Sid user = MakeSid(WinLocalServiceSid);
    Sid integrity = MakeSid(WinMediumLabelSid);
    AccessRights rights(user.data(), integrity.data());
    EXPECT_EQ(OwnRights(rights.Get()) != 0, member != FALSE);
}

TEST(ProcessSecurity, IsAcceptedByTheComponentRuntime) {
    const Apartment apartment(COINIT_MULTITHREADED);
    EXPECT_NO_THROW(SecureProcess());
}

} // namespace
