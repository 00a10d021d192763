// Looking at device modes.
#include "substitute/spooler/DeviceMode.h"

#include <cstddef>
#include <cstring>

#include "substitute/base/Bytes.h"

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
