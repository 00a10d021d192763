// Identity and process-wide security.
#include "substitute/server/ProcessSecurity.h"

#include <objbase.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <vector>

#include "core/Handles.h"
#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/registration/ServerIdentity.h"

namespace kemba::substitute {
namespace {

/// Whether calls may come from other machines at all is for the machine's own limits to say.
constexpr DWORD kCall = COM_RIGHTS_EXECUTE | COM_RIGHTS_EXECUTE_LOCAL | COM_RIGHTS_EXECUTE_REMOTE;

void ThrowUnless(BOOL succeeded, const wchar_t* what) {
    if (!succeeded) {
        throw WindowsFailure(what, GetLastError());
    }
}

std::wstring ReadText(HKEY root, const std::wstring& key, const wchar_t* value) {
    wchar_t text[512] = {};
    DWORD size = sizeof(text);
    const LSTATUS error = RegGetValueW(root, key.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &size);
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
        return {};
    }
    ThrowIfError(static_cast<DWORD>(error),
                 std::wstring(L"reading the application's registry value \"") + value + L"\"");
    return text;
}

/// Room for an access control list with one entry per identifier.
std::vector<BYTE> NewList(std::initializer_list<PSID> identifiers) {
    std::size_t size = sizeof(ACL);
    for (const PSID identifier : identifiers) {
        size += sizeof(ACCESS_ALLOWED_ACE) + GetLengthSid(identifier);
    }
    std::vector<BYTE> list(size);
    ThrowUnless(InitializeAcl(reinterpret_cast<ACL*>(list.data()), static_cast<DWORD>(size), ACL_REVISION),
                L"making an access control list failed");
    return list;
}

std::array<BYTE, SECURITY_MAX_SID_SIZE> WellKnown(WELL_KNOWN_SID_TYPE which) {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> identifier = {};
    auto size = static_cast<DWORD>(identifier.size());
    ThrowUnless(CreateWellKnownSid(which, nullptr, identifier.data(), &size),
                L"making a security identifier failed");
    return identifier;
}

} // namespace

ApplicationIdentity ReadApplicationIdentity(HKEY root) {
    const std::wstring key = L"Software\\Classes\\AppID\\" + Braced(kApplication);
    return {ReadText(root, key, L"RunAs"), ReadText(root, key, L"LocalService")};
}

void RefuseAccount(const ApplicationIdentity& identity) {
    const std::wstring& account = identity.localService.empty() ? identity.runAs : identity.localService;
    if (!account.empty()) {
        throw Failure{CO_E_WRONG_SERVER_IDENTITY,
                      L"the application is set to run as \"" + account +
                          L"\", so that every caller would act with the rights of that account; set its "
                          L"identity to the launching user"};
    }
}

AccessRights::AccessRights(PSID user, PSID integrity)
    : m_user(static_cast<BYTE*>(user), static_cast<BYTE*>(user) + GetLengthSid(user)) {
    auto system = WellKnown(WinLocalSystemSid);
    auto administrators = WellKnown(WinBuiltinAdministratorsSid);
    m_allowed = NewList({user, system.data(), administrators.data()});
    auto* const allowed = reinterpret_cast<ACL*>(m_allowed.data());
    for (const PSID caller : {user, PSID(system.data()), PSID(administrators.data())}) {
        ThrowUnless(AddAccessAllowedAce(allowed, ACL_REVISION, kCall, caller),
                    L"filling an access control list failed");
    }
    m_label = NewList({integrity});
    auto* const label = reinterpret_cast<ACL*>(m_label.data());
    ThrowUnless(AddMandatoryAce(label, ACL_REVISION, 0, SYSTEM_MANDATORY_LABEL_NO_EXECUTE_UP, integrity),
                L"stating an integrity level failed");
    // COM wants an owner and a group; neither gives a right to call.
    ThrowUnless(InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION) &&
                    SetSecurityDescriptorOwner(&m_descriptor, m_user.data(), FALSE) &&
                    SetSecurityDescriptorGroup(&m_descriptor, m_user.data(), FALSE) &&
                    SetSecurityDescriptorDacl(&m_descriptor, TRUE, allowed, FALSE) &&
                    SetSecurityDescriptorSacl(&m_descriptor, TRUE, label, FALSE),
                L"making a security descriptor failed");
}

std::vector<BYTE> ReadOwnToken(TOKEN_INFORMATION_CLASS what) {
    HANDLE opened = nullptr;
    ThrowUnless(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened),
                L"opening the process's token failed");
    const OCore::UniqueHandle token(opened);
    DWORD size = 0;
    if (!GetTokenInformation(token.get(), what, nullptr, 0, &size) &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        throw WindowsFailure(L"reading the process's token failed", GetLastError());
    }
    std::vector<BYTE> information(size);
    ThrowUnless(GetTokenInformation(token.get(), what, information.data(), size, &size),
                L"reading the process's token failed");
    return information;
}

void SecureProcess() {
    const std::vector<BYTE> user = ReadOwnToken(TokenUser);
    const std::vector<BYTE> integrity = ReadOwnToken(TokenIntegrityLevel);
    AccessRights rights(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid,
                        reinterpret_cast<const TOKEN_MANDATORY_LABEL*>(integrity.data())->Label.Sid);
    ThrowIfFailed(CoInitializeSecurity(rights.Get(), -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                                       RPC_C_IMP_LEVEL_IDENTIFY, nullptr,
                                       EOAC_NO_CUSTOM_MARSHAL | EOAC_DISABLE_AAA, nullptr),
                  L"setting the security of calls");
}

} // namespace kemba::substitute
