// Comparing places and names; the size of a device mode.
#include "substitute/settings/Settings.h"

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

/// Clears a text field from its zero on.
void ClearFromZero(Bytes& mode, std::size_t offset, std::size_t length) {
    bool ended = false;
    for (std::size_t index = 0; index < length; ++index) {
        BYTE* const unit = mode.data() + offset + index * sizeof(wchar_t);
        ended = ended || (unit[0] == 0 && unit[1] == 0);
        if (ended) {
            unit[0] = unit[1] = 0;
        }
    }
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

void ClearTextRemains(Bytes& mode) {
    if (ModeSize(mode) != 0) {
        ClearFromZero(mode, offsetof(DEVMODEW, dmDeviceName), CCHDEVICENAME);
        ClearFromZero(mode, offsetof(DEVMODEW, dmFormName), CCHFORMNAME);
    }
}

} // namespace kemba::substitute
