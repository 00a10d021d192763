// Locks: recursion, and the scoped holder's early release.
#include "core/OSynchronizer.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

/// Counts instead of locking.
struct CountingLock : OSynchronizer {
    void Lock() override { ++locks; }
    void Unlock() override { ++unlocks; }
    int locks = 0;
    int unlocks = 0;
};

TEST(OScopedLock, LocksOnConstructionAndUnlocksAtTheEndOfItsScope) {
    CountingLock lock;
    {
        const OScopedLock hold(lock);
        EXPECT_EQ(lock.locks, 1);
        EXPECT_EQ(lock.unlocks, 0);
    }
    EXPECT_EQ(lock.unlocks, 1);
}

} // namespace
