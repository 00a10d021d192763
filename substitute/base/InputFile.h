// Reading files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/Handles.h"

namespace kemba::substitute {

/// A file on a disk, opened for reading from its start to its end. Nobody may write to it meanwhile; it may
/// get another name, be replaced or deleted, which does not change what is read. Throws Failure with the
/// system's status and a reason that names the file.
class InputFile {
  public:
    /// `kind` is what the reasons call it, "file" for one. What is no file, a device for one, is refused with
    /// ERROR_BAD_FILE_TYPE; see NeedFilePath() for paths that are not even tried.
    InputFile(std::wstring kind, std::wstring path);

    /// The next bytes, as many as there is room for; fewer only at the end. Returns how many.
    std::size_t Read(void* bytes, std::size_t room);

    /// All bytes, for a file that nothing has been read of: ERROR_FILE_TOO_LARGE, before anything is read,
    /// when there are more than `limit`.
    template<class Content>
    Content ReadAll(std::size_t limit) {
        Content content;
        content.resize(GetSize(limit));
        content.resize(Read(content.data(), content.size()));
        return content;
    }

  private:
    [[noreturn]] void Fail(const wchar_t* what, DWORD error) const;
    std::size_t GetSize(std::size_t limit) const;

    const std::wstring m_kind;
    const std::wstring m_path;
    OCore::UniqueHandle m_file;
    std::uint64_t m_size = 0;
};

} // namespace kemba::substitute
