// Registry keys that everybody may use less than usually.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/kit/Owners.h"

namespace kit {

/// Leaves everybody, the test included, certain rights to a key and no more (beside that of changing the
/// rights), until the end of its scope; then they are as before.
class KeyRights {
  public:
    KeyRights(HKEY root, std::wstring path, DWORD rights) : m_root(root), m_path(std::move(path)) {
        const UniqueKey key = OpenKey(m_root, m_path, READ_CONTROL);
        DWORD size = 0;
        RegGetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, nullptr, &size);
        m_before.resize(size);
        EXPECT_EQ(RegGetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, m_before.data(), &size),
                  ERROR_SUCCESS);

        struct {
            ACL list;
            BYTE room[256];
        } access{};
        EXPECT_TRUE(InitializeAcl(&access.list, sizeof(access), ACL_REVISION));
        SID everybody{SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
        EXPECT_TRUE(AddAccessAllowedAce(&access.list, ACL_REVISION, rights | WRITE_DAC, &everybody));
        SECURITY_DESCRIPTOR descriptor{};
        EXPECT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
        EXPECT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, &access.list, FALSE));
        Apply(&descriptor);
    }
    KeyRights(const KeyRights&) = delete;
    KeyRights& operator=(const KeyRights&) = delete;
    ~KeyRights() { Apply(m_before.data()); }

  private:
    void Apply(PSECURITY_DESCRIPTOR descriptor) const {
        EXPECT_EQ(RegSetKeySecurity(OpenKey(m_root, m_path, WRITE_DAC).get(), DACL_SECURITY_INFORMATION,
                                    descriptor),
                  ERROR_SUCCESS);
    }

    HKEY m_root;
    std::wstring m_path;
    std::vector<BYTE> m_before; // a self-relative security descriptor
};

} // namespace kit
