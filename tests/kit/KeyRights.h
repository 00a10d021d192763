// Registry keys that everybody may use less than usually.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kit {

/// Leaves everybody, the test included, certain rights to a key and no more (beside that of changing the
/// rights), until the end of its scope; then they are as before.
class KeyRights {
  public:
    KeyRights(HKEY root, std::wstring path, DWORD rights) : m_root(root), m_path(std::move(path)) {
        const HKEY key = Open(READ_CONTROL);
        DWORD size = 0;
        RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, nullptr, &size);
        m_before.resize(size);
        EXPECT_EQ(RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, m_before.data(), &size), ERROR_SUCCESS);
        RegCloseKey(key);

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
    HKEY Open(DWORD rights) const {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExW(m_root, m_path.c_str(), 0, rights, &key), ERROR_SUCCESS);
        return key;
    }
    void Apply(PSECURITY_DESCRIPTOR descriptor) const {
        const HKEY key = Open(WRITE_DAC);
        EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        RegCloseKey(key);
    }

    HKEY m_root;
    std::wstring m_path;
    std::vector<BYTE> m_before; // a self-relative security descriptor
};

} // namespace kit
