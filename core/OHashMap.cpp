// The key hash of OStringMap.
#include "core/OHashMap.h"

#include <array>

namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320;

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

std::uint32_t OCore::StringHash::operator()(const OString& key) const {
    std::uint32_t hash = 0xFFFFFFFF;
    const char* at = key.Narrow();
    do {
        hash = hash >> 8 ^ kTable[(hash ^ static_cast<unsigned char>(*at)) & 0xFF];
    } while (*at++ != 0);
    return ~hash;
}
