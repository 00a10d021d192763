// A folder of a test's own.
#pragma once

#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

#include "tests/kit/TemporaryFile.h"

namespace kit {

/// A new empty folder under a name that no other test has; deleted with everything in it in the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        int made = 0;
        do { // an ended process may have left one
            m_path =
                std::filesystem::temp_directory_path() /
                (L"kemba test " + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made));
        } while (!std::filesystem::create_directory(m_path));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::wstring Path() const { return m_path.wstring(); }
    /// Full path of a file in the folder.
    std::wstring File(const std::wstring& name) const { return (m_path / name).wstring(); }
    /// Makes a file with these bytes.
    void Put(const std::wstring& name, const std::string& bytes) const { WriteBytes(File(name), bytes); }
    /// How many files there are.
    std::ptrdiff_t Count() const {
        return std::distance(std::filesystem::directory_iterator(m_path),
                             std::filesystem::directory_iterator());
    }

  private:
    std::filesystem::path m_path;
};

} // namespace kit
