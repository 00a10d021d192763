// A file of a test's own, removed at the end of its scope.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/OString.h"

/// A name in the system's temporary folder that no other test has; the file is there once somebody makes it.
class TemporaryFile {
  public:
    TemporaryFile() {
        wchar_t folder[MAX_PATH + 1] = {};
        GetTempPathW(MAX_PATH + 1, folder);
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        m_name = folder + std::wstring(test.begin(), test.end()) + std::to_wstring(GetCurrentProcessId());
    }
    /// With contents.
    explicit TemporaryFile(const std::string& contents) : TemporaryFile() { Fill(contents); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { DeleteFileW(m_name.c_str()); }

    const std::wstring& GetPath() const { return m_name; }
    OString GetName() const { return m_name.c_str(); }

    /// Whether another user of the file gets the access that it asks for, sharing everything itself.
    bool CanBeOpened(std::uint32_t access) const {
        const HANDLE handle = CreateFileW(m_name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        return handle != INVALID_HANDLE_VALUE && CloseHandle(handle);
    }

    /// What is in the file, whoever else has it open.
    std::string Contents() const {
        const HANDLE handle = CreateFileW(m_name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        std::string contents(64 * 1024, '\0');
        DWORD read = 0;
        ReadFile(handle, contents.data(), static_cast<DWORD>(contents.size()), &read, nullptr);
        CloseHandle(handle);
        contents.resize(read);
        return contents;
    }

  private:
    void Fill(const std::string& contents) const {
        const HANDLE handle = CreateFileW(m_name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(handle, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        WriteFile(handle, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr);
        CloseHandle(handle);
    }

    std::wstring m_name;
};
