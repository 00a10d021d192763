// UTF-8 decoder and encoder.
#include "core/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace OCore {
namespace {

bool IsHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// A byte after the first, of the lowest six bits.
char Following(std::uint32_t value) {
    return static_cast<char>(0x80 | (value & 0x3F));
}

} // namespace

std::size_t DecodeUtf8(std::string_view bytes, std::span<wchar_t> room) {
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    wchar_t* to = room.data();
    wchar_t* const last = to + room.size();
    while (from != end && to != last) {
        std::uint32_t value = static_cast<unsigned char>(*from++);
        if (value < 0x80) {
            *to++ = static_cast<wchar_t>(value);
            continue;
        }
        const int following = (value & 0xE0) == 0xC0 ? 1 : (value & 0xF0) == 0xE0 ? 2 : 3;
        value &= following == 1 ? 0x1F : 0x0F;
        for (int left = following; left > 0; --left) {
            value <<= 6;
            if (from != end) {
                value |= static_cast<unsigned char>(*from++) & 0x3FU;
            }
        }
        if (following < 3) {
            *to++ = static_cast<wchar_t>(value);
            continue;
        }
        value -= 0x10000;
        *to++ = static_cast<wchar_t>(0xD800 + (value >> 10));
        if (to != last) {
            *to++ = static_cast<wchar_t>(0xDC00 + (value & 0x3FF));
        }
    }
    return static_cast<std::size_t>(to - room.data());
}

std::size_t EncodeUtf8(std::wstring_view text, std::span<char> room) {
    char* to = room.data();
    char* const last = to + room.size();
    for (std::size_t at = 0; at < text.size() && to != last; ++at) {
        std::uint32_t value = text[at];
        if (value < 0x80) {
            *to++ = static_cast<char>(value);
            continue;
        }
        if (IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) {
            ++at;
            value = 0x10000 + ((value - 0xD800) << 10) + (text[at] - 0xDC00U);
        }
        *to++ = static_cast<char>(value < 0x800     ? 0xC0 | value >> 6
                                  : value < 0x10000 ? 0xE0 | value >> 12
                                                    : 0xF0 | value >> 18);
        if (value >= 0x10000 && to != last) {
            *to++ = Following(value >> 12);
        }
        if (value >= 0x800 && to != last) {
            *to++ = Following(value >> 6);
        }
        if (to != last) {
            *to++ = Following(value);
        }
    }
    return static_cast<std::size_t>(to - room.data());
}

} // namespace OCore
