// The bytes of a settings file (.vqs); docs/settings-file.md describes them one by one.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "substitute/Settings.h"

namespace kemba::substitute {

inline constexpr std::size_t kMaximumVqsSize = 16u << 20; ///< bytes
inline constexpr std::uint32_t kMaximumVqsValues = 4096;
inline constexpr std::uint32_t kMaximumVqsText = 1024; ///< UTF-16 units of one text

/// CRC-32 as of ISO 3309 (reflected, polynomial 0x04C11DB7).
std::uint32_t Crc32(std::span<const BYTE> bytes);

/// Throws Failure (ERROR_FILE_TOO_LARGE, ERROR_INVALID_DATA) for settings that no file may hold.
Bytes EncodeVqs(const Settings& settings);

/// Takes nothing for granted: whatever is not exactly a settings file is refused with a Failure
/// (ERROR_INVALID_DATA, ERROR_FILE_TOO_LARGE; ERROR_REVISION_MISMATCH for another format version). Allocates
/// no more than the number of bytes given and a fixed amount for each of at most kMaximumVqsValues values.
Settings DecodeVqs(std::span<const BYTE> bytes);

} // namespace kemba::substitute
