// Sending a file to a printer.
#include "substitute/spooler/SendFile.h"

#include <windows.h>

#include <string_view>
#include <vector>

#include "substitute/base/AbsolutePath.h"
#include "substitute/base/Failure.h"
#include "substitute/spooler/PrintJob.h"

namespace kemba::substitute {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

/// A file opened for reading from its start to its end.
class SourceFile {
  public:
    /// Throws Failure.
    explicit SourceFile(const std::wstring& path)
        : m_path(path), m_handle(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                             OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
        if (m_handle == INVALID_HANDLE_VALUE) {
            throw WindowsFailure(L"opening the file \"" + path + L"\" failed", GetLastError());
        }
    }
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;
    ~SourceFile() { CloseHandle(m_handle); }

    bool IsOnDisk() const { return GetFileType(m_handle) == FILE_TYPE_DISK; }

    /// The next bytes in `block`; none at the end. Throws Failure.
    std::string_view Read(std::vector<char>& block) {
        DWORD count = 0;
        if (!ReadFile(m_handle, block.data(), static_cast<DWORD>(block.size()), &count, nullptr)) {
            throw WindowsFailure(L"reading the file \"" + m_path + L"\" failed", GetLastError());
        }
        return {block.data(), count};
    }

  private:
    const std::wstring m_path;
    const HANDLE m_handle;
};

std::wstring FileNameOf(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

} // namespace

void SendFileTo(const Printer& printer, const std::wstring& path, const std::wstring& documentName) {
    if (!IsAbsolutePath(path)) {
        throw WindowsFailure(L"the file's path \"" + path + L"\" is not absolute", ERROR_BAD_PATHNAME);
    }
    SourceFile file(path);
    if (!file.IsOnDisk()) {
        throw WindowsFailure(L"\"" + path + L"\" is no file", ERROR_BAD_FILE_TYPE);
    }
    std::vector<char> block(kBlock);
    std::string_view bytes = file.Read(block);
    if (bytes.empty()) {
        throw WindowsFailure(L"the file \"" + path + L"\" is empty", ERROR_INVALID_DATA);
    }
    PrintJob job(printer, documentName.empty() ? FileNameOf(path) : documentName);
    for (; !bytes.empty(); bytes = file.Read(block)) {
        job.Write(bytes);
    }
    job.Finish();
}

} // namespace kemba::substitute
