// Whether ordinary users may change a file that others run.
#pragma once

#include <windows.h>

#include <string>

namespace kemba::substitute {

/// Whether an access list gives any of the rights (of files) to whoever is logged on: a member of Everyone,
/// Authenticated Users, Interactive and Users. No list at all gives everything. Grants to single accounts and
/// to other groups are not looked at.
bool GivesUsersAnyOf(const ACL* list, DWORD rights) noexcept;

/// Whether such a user may write to the program's file, or put another in its place, or one beside it. False
/// as well if the lists cannot be read.
bool UsersMayReplace(const std::wstring& program);

} // namespace kemba::substitute
