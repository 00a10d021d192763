// Which access lists let ordinary users write.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "substitute/registration/WriteAccess.h"

using namespace kemba::substitute;

namespace {

struct Entry {
    BYTE type;
    WELL_KNOWN_SID_TYPE trustee;
    DWORD mask;
    BYTE flags = 0;
};

/// An access list of these entries, in this order.
class AccessList {
  public:
    explicit AccessList(const std::vector<Entry>& entries) {
        EXPECT_TRUE(InitializeAcl(Get(), static_cast<DWORD>(m_bytes.size()), ACL_REVISION));
        for (const Entry& entry : entries) {
            std::array<BYTE, SECURITY_MAX_SID_SIZE> trustee = {};
            auto size = static_cast<DWORD>(trustee.size());
            EXPECT_TRUE(CreateWellKnownSid(entry.trustee, nullptr, trustee.data(), &size));
            EXPECT_TRUE(
                entry.type == ACCESS_ALLOWED_ACE_TYPE
                    ? AddAccessAllowedAceEx(Get(), ACL_REVISION, entry.flags, entry.mask, trustee.data())
                    : AddAccessDeniedAceEx(Get(), ACL_REVISION, entry.flags, entry.mask, trustee.data()));
        }
    }
    ACL* Get() { return reinterpret_cast<ACL*>(m_bytes.data()); }

  private:
    alignas(ACL) std::array<BYTE, 1'024> m_bytes = {};
};

constexpr BYTE kAllow = ACCESS_ALLOWED_ACE_TYPE;
constexpr BYTE kDeny = ACCESS_DENIED_ACE_TYPE;
constexpr DWORD kReadAndRun = FILE_GENERIC_READ | FILE_GENERIC_EXECUTE;

TEST(WriteAccess, IsDecidedByTheEntriesOfOrdinaryUsersInTheirOrder) {
    const struct {
        const char* name;
        std::vector<Entry> entries;
        bool gives;
    } rows[] = {
        {"nobody", {}, false},
        {"a folder of programs",
         {{kAllow, WinLocalSystemSid, FILE_ALL_ACCESS},
          {kAllow, WinBuiltinAdministratorsSid, FILE_ALL_ACCESS},
          {kAllow, WinBuiltinUsersSid, kReadAndRun}},
         false},
        {"users", {{kAllow, WinBuiltinUsersSid, FILE_WRITE_DATA}}, true},
        {"everyone", {{kAllow, WinWorldSid, FILE_WRITE_DATA}}, true},
        {"who has logged on", {{kAllow, WinAuthenticatedUserSid, FILE_WRITE_DATA}}, true},
        {"who sits there", {{kAllow, WinInteractiveSid, FILE_WRITE_DATA}}, true},
        {"another right", {{kAllow, WinWorldSid, FILE_WRITE_ATTRIBUTES | FILE_WRITE_EA}}, false},
        {"generic rights", {{kAllow, WinWorldSid, GENERIC_WRITE}}, true},
        {"generic rights to read", {{kAllow, WinWorldSid, GENERIC_READ | GENERIC_EXECUTE}}, false},
        {"a network's users", {{kAllow, WinNetworkSid, FILE_ALL_ACCESS}}, false},
        {"denied before",
         {{kDeny, WinWorldSid, FILE_WRITE_DATA}, {kAllow, WinBuiltinUsersSid, FILE_ALL_ACCESS}},
         false},
        {"denied after",
         {{kAllow, WinBuiltinUsersSid, FILE_ALL_ACCESS}, {kDeny, WinWorldSid, FILE_WRITE_DATA}},
         true},
        {"denied something else",
         {{kDeny, WinWorldSid, DELETE}, {kAllow, WinBuiltinUsersSid, FILE_ALL_ACCESS}},
         true},
        {"handed down alone", {{kAllow, WinAuthenticatedUserSid, FILE_ALL_ACCESS, INHERIT_ONLY_ACE}}, false},
        {"handed down as well",
         {{kAllow, WinAuthenticatedUserSid, FILE_ALL_ACCESS, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE}},
         true},
    };
    for (const auto& row : rows) {
        AccessList list(row.entries);
        EXPECT_EQ(GivesUsersAnyOf(list.Get(), FILE_WRITE_DATA), row.gives) << row.name;
    }
}

TEST(WriteAccess, NoListGivesEverything) {
    EXPECT_TRUE(GivesUsersAnyOf(nullptr, FILE_WRITE_DATA));
}

TEST(WriteAccess, AFileThatIsNotThereIsNothingToWarnOf) {
    EXPECT_FALSE(UsersMayReplace(L"C:\\no such folder\\kemba-dal.exe"));
}

} // namespace
