// Paths that mean the same file for every process.
#pragma once

#include <string_view>

namespace kemba::substitute {

/// Whether the path depends on nobody's current folder or drive: "C:\..." or "\\...", "/" being as good as
/// "\".
inline bool IsAbsolutePath(std::wstring_view path) {
    const auto separatorAt = [&](std::size_t index) {
        return index < path.size() && (path[index] == L'\\' || path[index] == L'/');
    };
    return (separatorAt(0) && separatorAt(1)) || (path.size() > 2 && path[1] == L':' && separatorAt(2));
}

} // namespace kemba::substitute
