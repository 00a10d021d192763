// Comparing places and names; the size of a device mode.
#include "substitute/Settings.h"

#include <cstddef>
#include <cstring>

namespace kemba::substitute {
namespace {

/// Everything up to here is read by drivers without a look at the size.
constexpr std::size_t kSmallestMode = offsetof(DEVMODEW, dmICMMethod);

WORD WordAt(const Bytes& bytes, std::size_t offset) {
    WORD word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof(word));
    return word;
}

} // namespace

int ComparePlaces(const PrinterValue& left, const PrinterValue& right) {
    const int keys = CompareNames(left.key, right.key);
    return keys != 0 ? keys : CompareNames(left.name, right.name);
}

int CompareNames(const std::wstring& left, const std::wstring& right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) -
           CSTR_EQUAL;
}

std::size_t ModeSize(const Bytes& bytes) {
    if (bytes.size() < kSmallestMode) {
        return 0;
    }
    const std::size_t open = WordAt(bytes, offsetof(DEVMODEW, dmSize));
    const std::size_t size = open + WordAt(bytes, offsetof(DEVMODEW, dmDriverExtra));
    return open >= kSmallestMode && size <= bytes.size() ? size : 0;
}

} // namespace kemba::substitute
