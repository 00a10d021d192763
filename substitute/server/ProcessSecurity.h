// On whose behalf the server works, and who may call it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kemba::substitute {

/// What the registry says of the account that the application is to run as; empty texts: nothing.
struct ApplicationIdentity {
    std::wstring runAs;
    std::wstring localService;
};

/// Reads it from the AppID below "Software\Classes" of that root. Throws Failure, also when a value is there
/// that is no text.
ApplicationIdentity ReadApplicationIdentity(HKEY root);

/// Throws Failure (CO_E_WRONG_SERVER_IDENTITY) if an account is set: every caller would act with its rights.
/// That holds for "Interactive User" too, who need not be the caller.
void RefuseAccount(const ApplicationIdentity& identity);

/// Access rights to the server's process: calls by one user, by the system and by administrators, none of
/// them from a process of lower integrity than the server's own.
class AccessRights {
  public:
    /// The user and the integrity level, such as a process's token has them. Throws Failure.
    AccessRights(PSID user, PSID integrity);
    AccessRights(const AccessRights&) = delete;
    AccessRights& operator=(const AccessRights&) = delete;

    /// In absolute form; lives as long as this.
    PSECURITY_DESCRIPTOR Get() { return &m_descriptor; }

  private:
    SECURITY_DESCRIPTOR m_descriptor = {};
    std::vector<BYTE> m_user;
    std::vector<BYTE> m_allowed;
    std::vector<BYTE> m_label;
};

/// One entry of the process's own token, such as TokenUser, as the system lays it out. Throws Failure.
std::vector<BYTE> ReadOwnToken(TOKEN_INFORMATION_CLASS what);

/// Sets the security of all calls to and from this process, in place of the machine's defaults and of what is
/// set for the application. To be called in the apartment, before anything is offered. Throws Failure.
void SecureProcess();

} // namespace kemba::substitute
