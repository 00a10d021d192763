// UTF-8 with its bits written out, by the rules of the library's own converter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kit {

/// What a lead byte says it leads is taken as it is, and everything with the high bit that is no lead of two
/// or three bytes leads four.
inline std::u16string DecodedByModel(const std::string& bytes) {
    std::u16string units;
    const auto low = [&](std::size_t at,
                         unsigned count) { // that many low bits; of bytes that are missing, zeros
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) % (1U << count) : 0U;
    };
    std::size_t at = 0;
    while (at < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[at]);
        if (lead < 0b1000'0000) {
            units += static_cast<char16_t>(lead);
            at += 1;
        } else if (lead >= 0b1100'0000 && lead <= 0b1101'1111) {
            units += static_cast<char16_t>(low(at, 5) * 64 + low(at + 1, 6));
            at += 2;
        } else if (lead >= 0b1110'0000 && lead <= 0b1110'1111) {
            units += static_cast<char16_t>(low(at, 4) * 4096 + low(at + 1, 6) * 64 + low(at + 2, 6));
            at += 3;
        } else {
            const std::uint32_t value =
                low(at, 4) * 262'144 + low(at + 1, 6) * 4096 + low(at + 2, 6) * 64 + low(at + 3, 6) - 65'536;
            units += static_cast<char16_t>(0xD800 + value / 1024);
            units += static_cast<char16_t>(0xDC00 + value % 1024);
            at += 4;
        }
    }
    return units;
}

/// UTF-8 as everybody writes it; a half of a pair by itself as any other unit.
inline std::string EncodedByModel(const std::u16string& units) {
    std::string bytes;
    for (std::size_t at = 0; at < units.size(); ++at) {
        std::uint32_t value = units[at];
        if (value / 1024 == 0xD800 / 1024 && at + 1 < units.size() && units[at + 1] / 1024 == 0xDC00 / 1024) {
            value = 65'536 + value % 1024 * 1024 + units[++at] % 1024U;
        }
        const int following = value < 128 ? 0 : value < 2048 ? 1 : value < 65'536 ? 2 : 3;
        constexpr unsigned kLeads[] = {0, 0b1100'0000, 0b1110'0000, 0b1111'0000};
        bytes += static_cast<char>(kLeads[following] + (value >> 6 * following));
        for (int left = following - 1; left >= 0; --left) {
            bytes += static_cast<char>(0b1000'0000 + (value >> 6 * left) % 64);
        }
    }
    return bytes;
}

} // namespace kit
