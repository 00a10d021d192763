// A folder of action profiles of a test's own.
#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

/// Empty at first; goes with all that is in it.
class ProfileFolder {
  public:
    ProfileFolder()
        : m_path(std::filesystem::temp_directory_path() /
                 (L"kemba profiles " + std::to_wstring(GetCurrentProcessId()))) {
        std::filesystem::create_directory(m_path);
    }
    ProfileFolder(const ProfileFolder&) = delete;
    ProfileFolder& operator=(const ProfileFolder&) = delete;
    ~ProfileFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::wstring Path() const { return m_path.wstring(); }
    void Put(const std::wstring& name, const std::string& text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
    }

  private:
    std::filesystem::path m_path;
};
