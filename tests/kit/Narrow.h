// Conversion between wide texts and the journal's UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "core/Utf8.h"

namespace kit {

/// The text in UTF-8.
inline std::string Narrow(std::wstring_view text) {
    return OCore::EncodeUtf8(text);
}

} // namespace kit
