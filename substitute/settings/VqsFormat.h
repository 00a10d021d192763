// The bytes of a settings file (.vqs); docs/settings-file.md describes them one by one.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "substitute/base/Bytes.h"
#include "substitute/settings/Settings.h"

namespace kemba::substitute {

inline constexpr std::size_t kMaximumVqsSize = 16u << 20; ///< bytes
inline constexpr std::uint32_t kMaximumVqsValues = 4096;
inline constexpr std::uint32_t kMaximumVqsText = 1024; ///< UTF-16 units of one text

/// Throws Failure (ERROR_FILE_TOO_LARGE, ERROR_INVALID_DATA) for settings that no file may hold.
Bytes EncodeVqs(const Settings& settings);

/// Why bytes are no settings file.
struct VqsRefusal {
    DWORD error; ///< ERROR_INVALID_DATA, ERROR_FILE_TOO_LARGE; ERROR_REVISION_MISMATCH: other format version
    std::wstring reason;
};

/// Takes nothing for granted: whatever is not exactly a settings file is refused, and `settings` is not to be
/// used then. Allocates no more than the number of bytes given and a fixed amount for each of at most
/// kMaximumVqsValues values.
std::optional<VqsRefusal> ParseVqs(std::span<const BYTE> bytes, Settings& settings);

/// The same; throws Failure for what is refused.
Settings DecodeVqs(std::span<const BYTE> bytes);

} // namespace kemba::substitute
