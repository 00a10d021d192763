// Device modes as bytes.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/DeviceMode.h"

using namespace kemba::substitute;

namespace {

/// Bytes of which a mode takes so many for itself and for its driver.
Bytes ModeOf(std::size_t all, std::size_t own, std::size_t drivers) {
    DEVMODEW mode{};
    mode.dmSize = static_cast<WORD>(own);
    mode.dmDriverExtra = static_cast<WORD>(drivers);
    Bytes bytes(all);
    std::copy_n(reinterpret_cast<const BYTE*>(&mode), std::min(all, sizeof(mode)), bytes.begin());
    return bytes;
}

TEST(ModeSize, IsWhatTheModeSaysAndTheBytesHold) {
    constexpr std::size_t kSmallest = offsetof(DEVMODEW, dmICMMethod); // of Windows NT 4
    const struct {
        std::size_t all;
        std::size_t own;
        std::size_t drivers;
        std::size_t size;
    } rows[] = {
        {0, kSmallest, 0, 0},
        {kSmallest - 1, kSmallest - 1, 0, 0},
        {kSmallest, kSmallest, 0, kSmallest},
        {kSmallest, kSmallest - 1, 1, 0},
        {kSmallest, kSmallest, 1, 0},
        {kSmallest + 1, kSmallest, 1, kSmallest + 1},
        {kSmallest + 9, kSmallest, 1, kSmallest + 1},
        {sizeof(DEVMODEW) + 100, sizeof(DEVMODEW), 100, sizeof(DEVMODEW) + 100},
        {sizeof(DEVMODEW) + 99, sizeof(DEVMODEW), 100, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ModeSize(ModeOf(row.all, row.own, row.drivers)), row.size)
            << row.all << " bytes, " << row.own << " + " << row.drivers;
    }
}

} // namespace
