// Comparison of paths part by part.
#include "substitute/base/DriverFolder.h"

#include <windows.h>

#include <cstddef>
#include <string_view>
#include <vector>

#include "substitute/base/Paths.h"

namespace kemba::substitute {
namespace {

constexpr std::wstring_view kSeparators = L"\\/";

bool SameName(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() &&
           (left.empty() || CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                                 static_cast<int>(right.size()), TRUE) == CSTR_EQUAL);
}

bool HasPrefix(std::wstring_view path, std::wstring_view prefix) {
    return SameName(path.substr(0, prefix.size()), prefix);
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

bool IsBelowFolder(std::wstring_view path, std::wstring_view folder) {
    const PathParts below(path);
    const PathParts above(folder);
    if (!below.understood || !above.understood || above.names.empty() ||
        below.names.size() <= above.names.size() || !SameName(below.drive, above.drive)) {
        return false;
    }
    for (std::size_t index = 0; index < above.names.size(); ++index) {
        if (!SameName(below.names[index], above.names[index])) {
            return false;
        }
    }
    return true;
}

} // namespace kemba::substitute
