// UTF-8 decoder and encoder.
#include "core/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace OCore {
namespace {

bool IsHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

std::wstring DecodeUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size() + 1);

    std::size_t at = 0;
    const auto next = [&]() -> std::uint32_t {
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at++]) : 0U;
    };
    const auto following = [&] { return next() & 0x3FU; };

    while (at < bytes.size()) {
        const std::uint32_t lead = next();
        if (lead < 0x80) {
            text.push_back(static_cast<wchar_t>(lead));
        } else if ((lead & 0xE0) == 0xC0) {
            text.push_back(static_cast<wchar_t>((lead & 0x1F) << 6 | following()));
        } else if ((lead & 0xF0) == 0xE0) {
            std::uint32_t value = (lead & 0x0F) << 12;
            value |= following() << 6;
            value |= following();
            text.push_back(static_cast<wchar_t>(value));
        } else {
            std::uint32_t value = (lead & 0x0F) << 18;
            value |= following() << 12;
            value |= following() << 6;
            value |= following();
            value -= 0x10000;
            text.push_back(static_cast<wchar_t>(0xD800 + (value >> 10)));
            text.push_back(static_cast<wchar_t>(0xDC00 + (value & 0x3FF)));
        }
    }
    text.shrink_to_fit();
    return text;
}

std::string EncodeUtf8(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 3);

    const auto put = [&](std::uint32_t value) { bytes.push_back(static_cast<char>(value)); };
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::uint32_t value = text[at];
        if (IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) {
            ++at;
            value = 0x10000 + ((value - 0xD800) << 10) + (text[at] - 0xDC00U);
        }
        if (value < 0x80) {
            put(value);
        } else if (value < 0x800) {
            put(0xC0 | value >> 6);
            put(0x80 | (value & 0x3F));
        } else if (value < 0x10000) {
            put(0xE0 | value >> 12);
            put(0x80 | (value >> 6 & 0x3F));
            put(0x80 | (value & 0x3F));
        } else {
            put(0xF0 | value >> 18);
            put(0x80 | (value >> 12 & 0x3F));
            put(0x80 | (value >> 6 & 0x3F));
            put(0x80 | (value & 0x3F));
        }
    }
    return bytes;
}

} // namespace OCore
