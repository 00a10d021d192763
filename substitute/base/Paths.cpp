// Paths taken apart as the system does it.
#include "substitute/base/Paths.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/base/Names.h"
#include "substitute/base/NumberText.h"

namespace kemba::substitute {
namespace {

constexpr wchar_t kSeparators[] = L"\\/";

bool IsSeparatorAt(std::wstring_view path, std::size_t index) {
    return index < path.size() && (path[index] == L'\\' || path[index] == L'/');
}

/// Whether the path is a drive's letter, a colon, a separator, and perhaps more.
bool BeginsWithDrive(std::wstring_view path) {
    const wchar_t letter = path.empty() ? L'\0' : static_cast<wchar_t>(path[0] | 0x20); // in lower case
    return letter >= L'a' && letter <= L'z' && path.substr(1, 1) == L":" && IsSeparatorAt(path, 2);
}

/// Whether the path is "UNC", a separator, and perhaps more.
bool BeginsWithUnc(std::wstring_view path) {
    return IsSeparatorAt(path, 3) && _wcsnicmp(path.data(), L"UNC", 3) == 0;
}

bool HasPrefix(std::wstring_view path, std::wstring_view prefix) {
    return IsSameName(path.substr(0, prefix.size()), prefix);
}

bool MeansItself(std::wstring_view name) {
    return name.back() != L'.' && name.back() != L' ' && name.find(L':') == std::wstring_view::npos;
}

/// An absolute path's root, a drive or nothing for a server, and the names behind it; all are views of the
/// path.
struct PathParts {
    bool understood = false;
    std::wstring_view drive;
    std::vector<std::wstring_view> names;

    explicit PathParts(std::wstring_view path) {
        bool onServer = false;
        if (HasPrefix(path, LR"(\\?\UNC\)")) {
            path.remove_prefix(8);
            onServer = true;
        } else if (HasPrefix(path, LR"(\\?\)")) {
            path.remove_prefix(4);
            if (path.size() < 2 || path[1] != L':') {
                return; // a volume or device by its own name
            }
        }
        if (!onServer && !IsAbsolutePath(path)) {
            return;
        }
        if (!onServer && path[1] == L':') {
            drive = path.substr(0, 2);
            path.remove_prefix(2);
        }
        understood = true;
        while (!path.empty()) {
            const std::wstring_view name = path.substr(0, path.find_first_of(kSeparators));
            if (!name.empty()) {
                understood = understood && MeansItself(name);
                names.push_back(name);
            }
            path.remove_prefix(name.size() < path.size() ? name.size() + 1 : name.size());
        }
    }
};

} // namespace

bool IsAbsolutePath(std::wstring_view path) {
    return (IsSeparatorAt(path, 0) && IsSeparatorAt(path, 1)) ||
           (path.size() > 2 && path[1] == L':' && IsSeparatorAt(path, 2));
}

bool IsDevicePath(std::wstring_view path) {
    const std::size_t begin = path.find_first_not_of(kSeparators);
    if (begin == std::wstring_view::npos || begin < 2) {
        return false;
    }
    const std::size_t end = path.find_first_of(kSeparators, begin);
    const std::wstring_view first = path.substr(begin, end - begin);
    if (first != L"?") {
        return first == L".";
    }
    const std::wstring_view rest =
        end == std::wstring_view::npos ? std::wstring_view() : path.substr(end + 1);
    return !BeginsWithDrive(rest) && !BeginsWithUnc(rest);
}

bool HasStreamPart(std::wstring_view fullPath) {
    const std::size_t drive = fullPath.starts_with(L"\\\\?\\") ? 4 : 0;
    return fullPath.find(L':', drive + 2) != std::wstring_view::npos; // that before is the drive's
}

bool IsBelowFolder(std::wstring_view path, std::wstring_view folder) {
    const PathParts below(path);
    const PathParts above(folder);
    if (!below.understood || !above.understood || above.names.empty() ||
        below.names.size() <= above.names.size() || !IsSameName(below.drive, above.drive)) {
        return false;
    }
    for (std::size_t index = 0; index < above.names.size(); ++index) {
        if (!IsSameName(below.names[index], above.names[index])) {
            return false;
        }
    }
    return true;
}

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        // The length, or the size needed, which counts the zero.
        const DWORD length =
            GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool whole = length < full.size();
        full.resize(length);
        if (whole) {
            return full.empty() ? path : full;
        }
    }
}

void NeedFilePath(const std::wstring& path) {
    if (path.empty() || path.find(L'\0') != std::wstring::npos) {
        throw WindowsFailure(L"using the file \"" + std::wstring(path.c_str()) + L"\" failed",
                             ERROR_INVALID_NAME);
    }
    if (IsDevicePath(FullPath(path))) {
        throw WindowsFailure(L"\"" + path + L"\" is no file", ERROR_BAD_FILE_TYPE);
    }
}

std::wstring_view FolderOf(std::wstring_view path) {
    return path.substr(0, path.find_last_of(kSeparators) + 1);
}

std::wstring_view FileNameOf(std::wstring_view path) {
    return path.substr(path.find_last_of(kSeparators) + 1);
}

std::wstring TemporaryNameBeside(std::wstring_view path, unsigned number, const wchar_t* ending) {
    return std::wstring(FolderOf(path)) + L"~ke" + NumberText(number & 0xFFFF, 4, kHexadecimalDigits) + L"." +
           ending;
}

std::wstring ProgramPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            throw WindowsFailure(L"asking for the program's path failed", GetLastError());
        }
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2); // cut off: the path is longer
    }
}

} // namespace kemba::substitute
