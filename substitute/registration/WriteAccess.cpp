// Reading access lists.
#include "substitute/registration/WriteAccess.h"

#include <aclapi.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "core/Handles.h"
#include "substitute/base/Paths.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kOwnership = WRITE_DAC | WRITE_OWNER;
constexpr DWORD kChangeFile = FILE_WRITE_DATA | FILE_APPEND_DATA | DELETE | kOwnership;
constexpr DWORD kChangeFolder = FILE_ADD_FILE | FILE_DELETE_CHILD | DELETE | kOwnership;

constexpr WELL_KNOWN_SID_TYPE kUsers[] = {WinWorldSid, WinAuthenticatedUserSid, WinInteractiveSid,
                                          WinBuiltinUsersSid};

bool IsAnyUser(PSID trustee) noexcept {
    return std::any_of(std::begin(kUsers), std::end(kUsers), [trustee](WELL_KNOWN_SID_TYPE type) {
        return IsWellKnownSid(trustee, type) != FALSE;
    });
}

DWORD WithoutGenericRights(DWORD mask) noexcept {
    GENERIC_MAPPING mapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS};
    MapGenericMask(&mask, &mapping);
    return mask;
}

bool GivesUsers(const std::wstring& path, DWORD rights) {
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR allocated = nullptr;
    auto* const name = const_cast<wchar_t*>(path.c_str()); // which the call does not change
    const DWORD error = GetNamedSecurityInfoW(name, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                              nullptr, &list, nullptr, &allocated);
    const OCore::UniqueLocal<void> descriptor(allocated);
    return error == ERROR_SUCCESS && GivesUsersAnyOf(list, rights);
}

} // namespace

bool GivesUsersAnyOf(const ACL* list, DWORD rights) noexcept {
    if (!list) {
        return true;
    }
    // The system's own rule: entries in their order, each right decided by the first that names it.
    DWORD given = 0;
    DWORD denied = 0;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (!GetAce(const_cast<ACL*>(list), index, &entry)) {
            return false;
        }
        const auto& header = *static_cast<const ACE_HEADER*>(entry);
        const bool allows = header.AceType == ACCESS_ALLOWED_ACE_TYPE;
        // Both kinds are laid out alike. What is only handed down does not hold for the thing itself.
        auto& access = *static_cast<ACCESS_ALLOWED_ACE*>(entry);
        if ((!allows && header.AceType != ACCESS_DENIED_ACE_TYPE) ||
            (header.AceFlags & INHERIT_ONLY_ACE) != 0 || !IsAnyUser(&access.SidStart)) {
            continue;
        }
        const DWORD mask = WithoutGenericRights(access.Mask);
        (allows ? given : denied) |= mask & ~(allows ? denied : given);
    }
    return (given & rights) != 0;
}

bool UsersMayReplace(const std::wstring& program) {
    return GivesUsers(program, kChangeFile) || GivesUsers(std::wstring(FolderOf(program)), kChangeFolder);
}

} // namespace kemba::substitute
