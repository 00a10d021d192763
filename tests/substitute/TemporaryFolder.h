// A folder of a test's own.
#pragma once

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

/// A new empty folder under a name that no other test has; deleted with everything in it in the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        static std::atomic<int> made{0};
        m_path = std::filesystem::temp_directory_path() /
                 (L"settings-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made));
        std::filesystem::create_directory(m_path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    /// Full path of a file in the folder.
    std::wstring File(const std::wstring& name) const { return (m_path / name).wstring(); }
    /// How many files there are.
    std::ptrdiff_t Count() const {
        return std::distance(std::filesystem::directory_iterator(m_path),
                             std::filesystem::directory_iterator());
    }

  private:
    std::filesystem::path m_path;
};
