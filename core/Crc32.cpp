// The checksum byte by byte over a table.
#include "core/Crc32.h"

#include <array>
#include <cstdint>
#include <span>

namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320; // reflected

constexpr std::array<std::uint32_t, 256> MakeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = value & 1 ? value >> 1 ^ kPolynomial : value >> 1;
        }
        table[byte] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> kTable = MakeTable();

} // namespace

std::uint32_t OCore::Crc32(std::span<const unsigned char> bytes) {
    std::uint32_t value = 0xFFFFFFFF;
    for (const unsigned char each : bytes) {
        value = value >> 8 ^ kTable[(value ^ each) & 0xFF];
    }
    return ~value;
}
