// Conversion between wide texts and the journal's UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "core/Utf8.h"

namespace kit {

/// The text in UTF-8.
inline std::string Narrow(std::wstring_view text) {
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(OCore::EncodeUtf8(text, bytes));
    return bytes;
}

/// The text that these bytes are in UTF-8.
inline std::wstring Wide(std::string_view bytes) {
    std::wstring text(bytes.size() + 1, L'\0'); // a lead without all of its bytes may make two units
    text.resize(OCore::DecodeUtf8(bytes, text));
    return text;
}

} // namespace kit
