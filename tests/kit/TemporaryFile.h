// A file of a test's own.
#pragma once

#include <string>
#include <string_view>

namespace kit {

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
    /// All bytes; empty when the file is gone or cannot be read.
    std::string Read() const;

  private:
    std::wstring m_path;
};

} // namespace kit
