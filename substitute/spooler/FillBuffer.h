// Calls that fill a buffer whose size is not known before.
#pragma once

#include <windows.h>

#include <cstddef>

#include "substitute/base/Bytes.h"

namespace kemba::substitute {

/// Nearly all records fit, so that nearly all questions are asked once: on a remote printer each is a round
/// trip.
inline constexpr std::size_t kFirstBuffer = std::size_t{8} * 1024;

/// Makes `call(buffer, size, needed)`, which gives an error code, with larger buffers until one is large
/// enough: what is asked for may have grown since its size was told. In the end the buffer has the size that
/// was needed, and what points into it stays valid.
template<class Call>
DWORD FillBuffer(Bytes& buffer, Call&& call) {
    buffer.resize(kFirstBuffer);
    for (;;) {
        DWORD needed = 0;
        const auto size = static_cast<DWORD>(buffer.size());
        const DWORD error = call(buffer.data(), size, needed);
        const bool tooSmall = error == ERROR_INSUFFICIENT_BUFFER || error == ERROR_MORE_DATA;
        if (!tooSmall || needed <= size) { // a size that does not grow would go on for ever
            if (needed != 0 && needed < size) {
                buffer.resize(needed);
            }
            return error;
        }
        buffer.resize(needed);
    }
}

} // namespace kemba::substitute
