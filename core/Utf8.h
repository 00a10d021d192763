// The library's own UTF-8 converter, used for code page 1208.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace OCore {

/// Decodes without validating, on purpose: a two- or three-byte lead takes the bytes that follow whatever
/// they are, and every other byte with the high bit set, stray continuation bytes included, is read as a
/// four-byte lead under the mask 0x0F. Bytes missing at the end count as zero. Surrogate pairs are made from
/// the low 16 bits. Returns how many units were written: what has no room is cut.
std::size_t DecodeUtf8(std::string_view bytes, std::span<wchar_t> room);

/// Encodes UTF-16; a lone surrogate becomes three bytes, from which `DecodeUtf8` makes it again. Returns how
/// many bytes were written: what has no room is cut.
std::size_t EncodeUtf8(std::wstring_view text, std::span<char> room);

} // namespace OCore
