// Names as the registry and the spooler tell them apart: letter case does not count.
#pragma once

#include <windows.h>

#include <string>

namespace kemba::substitute {

/// Below 0, 0 or above 0 as `left` comes before, is, or comes after `right`.
inline int CompareNames(const std::wstring& left, const std::wstring& right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) -
           CSTR_EQUAL;
}

/// Order of containers whose keys are such names.
struct LessName {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareNames(left, right) < 0;
    }
};

} // namespace kemba::substitute
