// Numbers in words: what the standard library's formatted printing does with them, without its 24 KB.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kemba::substitute {

inline constexpr std::wstring_view kDecimalDigits = L"0123456789";
inline constexpr std::wstring_view kHexadecimalDigits = L"0123456789ABCDEF";

/// The number in as many different digits as are given, with zeros in front up to `width`.
std::wstring NumberText(std::uint64_t number, std::size_t width = 1,
                        std::wstring_view digits = kDecimalDigits);

/// A GUID as the registry has it, in braces.
std::wstring Braced(REFGUID id);

} // namespace kemba::substitute
