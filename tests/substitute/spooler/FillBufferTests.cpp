// Buffers for what the spooler tells.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/FillBuffer.h"

using namespace kemba::substitute;

namespace {

constexpr auto kFirst = static_cast<DWORD>(kFirstBuffer);

TEST(FillBuffer, AsksAgainUntilTheBufferIsLargeEnough) {
    for (const DWORD tooSmall : {ERROR_INSUFFICIENT_BUFFER, ERROR_MORE_DATA}) {
        Bytes buffer;
        std::vector<DWORD> sizes;
        const DWORD error = FillBuffer(buffer, [&](BYTE*, DWORD size, DWORD& needed) {
            sizes.push_back(size);
            needed = static_cast<DWORD>(kFirstBuffer + 10 * std::min<std::size_t>(sizes.size(), 3));
            return sizes.size() < 4 ? tooSmall : DWORD{ERROR_SUCCESS};
        });
        EXPECT_EQ(error, DWORD{ERROR_SUCCESS});
        EXPECT_EQ(sizes, (std::vector<DWORD>{kFirst, kFirst + 10, kFirst + 20, kFirst + 30}));
    }
}

TEST(FillBuffer, ASizeThatDoesNotGrowEndsTheAsking) {
    Bytes buffer;
    EXPECT_EQ(FillBuffer(buffer,
                         [](BYTE*, DWORD, DWORD& needed) {
                             needed = 8; // and what is there is larger
                             return DWORD{ERROR_INSUFFICIENT_BUFFER};
                         }),
              DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST(FillBuffer, ARecordThatFitsIsAskedForOnceAndCutToItsSize) {
    Bytes buffer;
    int calls = 0;
    EXPECT_EQ(FillBuffer(buffer,
                         [&](BYTE* bytes, DWORD size, DWORD& needed) {
                             ++calls;
                             needed = 300;
                             std::fill(bytes, bytes + size, BYTE{7});
                             return DWORD{ERROR_SUCCESS};
                         }),
              DWORD{ERROR_SUCCESS});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(buffer, Bytes(300, BYTE{7}));
}

} // namespace
