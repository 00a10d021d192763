// Reading within limits, writing beside and renaming.
#include "substitute/settings/SettingsFile.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <span>
#include <string>

#include "core/Handles.h"
#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/InputFile.h"
#include "substitute/base/Paths.h"

namespace kemba::substitute {
namespace {

constexpr int kNameTries = 1000;
constexpr int kTries = 20;
constexpr DWORD kPause = 20; // milliseconds

/// Another export may be replacing the file, or a scanner may look at it, at this moment.
constexpr DWORD kPassing[] = {ERROR_ACCESS_DENIED,
                              ERROR_SHARING_VIOLATION,
                              ERROR_FILE_NOT_FOUND, // gone since it was looked for
                              ERROR_ALREADY_EXISTS, // come since then
                              ERROR_UNABLE_TO_REMOVE_REPLACED,
                              ERROR_UNABLE_TO_MOVE_REPLACEMENT,
                              ERROR_UNABLE_TO_MOVE_REPLACEMENT_2};
/// The file system has no such call.
constexpr DWORD kUnknown[] = {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED, ERROR_CALL_NOT_IMPLEMENTED};

bool IsAmong(std::span<const DWORD> errors, DWORD error) {
    return std::find(errors.begin(), errors.end(), error) != errors.end();
}

[[noreturn]] void Fail(const wchar_t* what, const std::wstring& path, DWORD error) {
    throw WindowsFailure(what + (L" \"" + path + L"\" failed"), error);
}

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void Delete(const std::wstring& path) {
    for (int left = kTries; !DeleteFileW(path.c_str()) && IsThere(path) && left > 0; --left) {
        Sleep(kPause);
    }
}

DWORD Move(const std::wstring& from, const std::wstring& to, DWORD flags) {
    return MoveFileExW(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH) ? ERROR_SUCCESS
                                                                                 : GetLastError();
}

/// A new file under a name of its own beside the one that it is to replace; deleted in the end unless it did.
class NewFile {
  public:
    NewFile(const std::wstring& path, ReplaceCall replace) : m_target(path), m_replace(replace) {
        // Two processes may come to the same numbers, and killed ones leave files behind.
        static std::atomic<unsigned> number{GetCurrentProcessId()};
        for (int left = kNameTries; !m_file; --left) {
            const unsigned mine = number++;
            m_path = TemporaryNameBeside(path, mine, L"tmp");
            m_former = TemporaryNameBeside(path, mine, L"old");
            DWORD error = ERROR_FILE_EXISTS;
            if (!IsThere(m_former)) {
                m_file = OCore::OwnFile(CreateFileW(m_path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                                    FILE_ATTRIBUTE_NORMAL, nullptr));
                error = GetLastError();
            }
            if (!m_file && (error != ERROR_FILE_EXISTS || left == 0)) {
                Fail(L"making the file", m_path, error);
            }
        }
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        m_file.reset();
        if (!m_taken) { // its former name may be another export's by now
            Delete(m_path);
        }
    }

    void Write(const Bytes& bytes) {
        DWORD written = 0;
        if (!WriteFile(m_file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            !FlushFileBuffers(m_file.get())) {
            Fail(L"writing the file", m_path, GetLastError());
        }
        if (written != bytes.size()) {
            Fail(L"writing the file", m_path, ERROR_DISK_FULL);
        }
        m_file.reset(); // the next steps share it with nobody
    }

    void TakeTargetsName() {
        for (int left = kTries;; --left) {
            const DWORD error = TryToTakeTargetsName();
            if (error == ERROR_SUCCESS) {
                m_taken = true;
                return;
            }
            PutFormerBack();
            if (left == 0 || !IsAmong(kPassing, error)) {
                GiveUp(error);
            }
            Sleep(kPause);
        }
    }

  private:
    DWORD TryToTakeTargetsName() const {
        if (!IsThere(m_target)) {
            return Move(m_path, m_target, 0);
        }
        if (m_replace(m_target.c_str(), m_path.c_str(), m_former.c_str(), 0, nullptr, nullptr)) {
            Delete(m_former);
            return ERROR_SUCCESS;
        }
        const DWORD error = GetLastError();
        return IsAmong(kUnknown, error) ? Move(m_path, m_target, MOVEFILE_REPLACE_EXISTING) : error;
    }

    /// Replacing is two changes of names, and only the first one may have been made.
    void PutFormerBack() const {
        if (IsThere(m_former) && Move(m_former, m_target, 0) != ERROR_SUCCESS && IsThere(m_target)) {
            Delete(m_former); // another export was faster
        }
    }

    [[noreturn]] void GiveUp(DWORD error) const {
        if (IsThere(m_former)) {
            Fail((L"the former file is \"" + m_former + L"\" now; replacing the file").c_str(), m_target,
                 error);
        }
        Fail(L"replacing the file", m_target, error);
    }

    const std::wstring m_target;
    const ReplaceCall m_replace;
    std::wstring m_path;
    std::wstring m_former; ///< the target's other name until it is deleted
    OCore::UniqueHandle m_file;
    bool m_taken = false; ///< the file has the target's name
};

} // namespace

Bytes ReadSettingsFile(const std::wstring& path, std::size_t limit) {
    return InputFile(L"file", path).ReadAll<Bytes>(limit);
}

void WriteSettingsFile(const std::wstring& path, const Bytes& bytes, ReplaceCall replace) {
    NeedFilePath(path);
    if (HasStreamPart(FullPath(path))) {
        throw WindowsFailure(L"\"" + path + L"\" is a part of a file", ERROR_INVALID_NAME);
    }
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY))) {
        Fail(L"replacing the file", path, ERROR_ACCESS_DENIED);
    }
    NewFile file(path, replace);
    file.Write(bytes);
    file.TakeTargetsName();
}

} // namespace kemba::substitute
