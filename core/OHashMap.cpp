// The key hash of OStringMap.
#include "core/OHashMap.h"

#include <cstdint>
#include <cstring>

#include "core/Crc32.h"
#include "core/OString.h"

std::uint32_t OCore::StringHash::operator()(const OString& key) const {
    const char* const text = key.Narrow();
    return Crc32({reinterpret_cast<const unsigned char*>(text), std::strlen(text) + 1});
}
