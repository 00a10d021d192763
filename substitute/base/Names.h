// Names as the registry and the spooler tell them apart: letter case does not count.
#pragma once

#include <windows.h>

#include <string_view>

namespace kemba::substitute {

/// Below 0, 0 or above 0 as `left` comes before, is, or comes after `right`.
inline int CompareNames(std::wstring_view left, std::wstring_view right) {
    if (left.empty() || right.empty()) { // whose address may be null, which the system refuses
        return (left.empty() ? 0 : 1) - (right.empty() ? 0 : 1);
    }
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) -
           CSTR_EQUAL;
}

inline bool IsSameName(std::wstring_view left, std::wstring_view right) {
    return CompareNames(left, right) == 0;
}

/// Order of containers whose keys are such names.
struct LessName {
    bool operator()(std::wstring_view left, std::wstring_view right) const {
        return CompareNames(left, right) < 0;
    }
};

} // namespace kemba::substitute
