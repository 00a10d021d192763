// A file of a test's own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kit {

/// All bytes of a file; empty when it is not there or cannot be read. Waits some seconds for `count` bytes at
/// least, for a file that another process writes.
std::string ReadBytes(const std::wstring& path, std::size_t count = 0);
/// Makes a file with these bytes in the place of what was there.
void WriteBytes(const std::wstring& path, std::string_view bytes);

/// A file in the folder for temporary files, empty at first, under a name that no other test has; deleted in
/// the end.
class TemporaryFile {
  public:
    /// Throws std::runtime_error when the file cannot be made.
    TemporaryFile();
    /// Made with these bytes.
    explicit TemporaryFile(std::string_view bytes);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::wstring& Path() const { return m_path; }
    std::string Read() const { return ReadBytes(m_path); }

  private:
    std::wstring m_path;
};

} // namespace kit
