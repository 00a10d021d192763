// The checksum of settings files and of map keys.
#pragma once

#include <cstdint>
#include <span>

namespace OCore {

/// CRC-32 as of ISO 3309 (polynomial 0x04C11DB7, reflected), the one of ZIP files.
std::uint32_t Crc32(std::span<const unsigned char> bytes);

} // namespace OCore
