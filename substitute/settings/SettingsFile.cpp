// Reading within limits, writing beside and renaming.
#include "substitute/settings/SettingsFile.h"

#include <atomic>
#include <utility>

#include "substitute/base/Failure.h"
#include "substitute/base/Handles.h"

namespace kemba::substitute {
namespace {

constexpr int kRenameTries = 20;
constexpr DWORD kRenamePause = 20; // milliseconds

[[noreturn]] void Fail(const wchar_t* what, const std::wstring& path, DWORD error) {
    throw WindowsFailure(what + (L" \"" + path + L"\" failed"), error);
}

/// An empty path names no file, and one that holds a zero would name another.
void NeedWholePath(const std::wstring& path) {
    if (path.empty() || path.find(L'\0') != std::wstring::npos) {
        Fail(L"using the file", path.c_str(), ERROR_INVALID_NAME);
    }
}

UniqueHandle OpenFile(const wchar_t* what, const std::wstring& path, DWORD access, DWORD sharing,
                      DWORD disposition) {
    UniqueHandle file = OwnFile(
        CreateFileW(path.c_str(), access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        Fail(what, path, GetLastError());
    }
    return file;
}

/// Deletes its file in the end, unless the file has got another name by then.
class TemporaryName {
  public:
    explicit TemporaryName(std::wstring path) : m_path(std::move(path)) {}
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    ~TemporaryName() {
        if (m_made) {
            DeleteFileW(m_path.c_str());
        }
    }

    void Write(const Bytes& bytes) {
        const UniqueHandle file = OpenFile(L"making the file", m_path, GENERIC_WRITE, 0, CREATE_NEW);
        m_made = true;
        DWORD written = 0;
        if (!WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            !FlushFileBuffers(file.get())) {
            Fail(L"writing the file", m_path, GetLastError());
        }
        if (written != bytes.size()) {
            Fail(L"writing the file", m_path, ERROR_DISK_FULL);
        }
    }
    void RenameTo(const std::wstring& path) {
        for (int left = kRenameTries;; --left) {
            if (MoveFileExW(m_path.c_str(), path.c_str(),
                            MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
                m_made = false;
                return;
            }
            // Another export may be replacing the file, or a scanner may look at it, at this moment.
            const DWORD error = GetLastError();
            if (left == 0 || (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION)) {
                Fail(L"replacing the file", path, error);
            }
            Sleep(kRenamePause);
        }
    }

  private:
    const std::wstring m_path;
    bool m_made = false;
};

std::wstring BesideName(const std::wstring& path) {
    static std::atomic<int> made{0};
    return path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made) + L".tmp";
}

} // namespace

Bytes ReadSettingsFile(const std::wstring& path, std::size_t limit) {
    NeedWholePath(path);
    const UniqueHandle file =
        OpenFile(L"opening the file", path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    LARGE_INTEGER size = {};
    if (GetFileType(file.get()) != FILE_TYPE_DISK) { // a device may never end
        Fail(L"reading the file", path, ERROR_BAD_FILE_TYPE);
    }
    if (!GetFileSizeEx(file.get(), &size)) {
        Fail(L"reading the file", path, GetLastError());
    }
    if (static_cast<ULONGLONG>(size.QuadPart) > limit) {
        Fail(L"reading the file", path, ERROR_FILE_TOO_LARGE);
    }
    Bytes bytes(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        Fail(L"reading the file", path, GetLastError());
    }
    bytes.resize(read);
    return bytes;
}

void WriteSettingsFile(const std::wstring& path, const Bytes& bytes) {
    NeedWholePath(path);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY))) {
        Fail(L"replacing the file", path, ERROR_ACCESS_DENIED);
    }
    TemporaryName beside(BesideName(path));
    beside.Write(bytes);
    beside.RenameTo(path);
}

} // namespace kemba::substitute
