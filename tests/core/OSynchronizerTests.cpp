// Locks: recursion, exclusion, and the scoped holder's early release.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/OSynchronizer.h"
#include "tests/core/VirtualSlots.h"

using namespace kit;

namespace {

/// Counts instead of locking.
struct CountingLock : OSynchronizer {
    void Lock() override { ++locks; }
    void Unlock() override { ++unlocks; }
    int locks = 0;
    int unlocks = 0;
};

/// Locks that another thread could take before it gave them back.
bool FreeForOthers(OCriticalSection& lock) {
    // The one member behind the table pointer is the system's structure.
    auto* const section = reinterpret_cast<CRITICAL_SECTION**>(&lock)[1];
    bool entered = false;
    std::thread([&] {
        entered = TryEnterCriticalSection(section);
        if (entered) {
            LeaveCriticalSection(section);
        }
    }).join();
    return entered;
}

TEST(OSynchronizer, HasItsOperationsInOrder) {
    EXPECT_EQ(SlotOf(&OSynchronizer::Lock), 2);
    EXPECT_EQ(SlotOf(&OSynchronizer::Unlock), 3);
}

TEST(OCriticalSection, HoldsOnePointerToTheSystemsStructure) {
    EXPECT_EQ(sizeof(OCriticalSection), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(CRITICAL_SECTION), 40U);
}

TEST(OCriticalSection, KeepsOtherThreadsOut) {
    OCriticalSection lock;
    EXPECT_TRUE(FreeForOthers(lock));
    lock.Lock();
    EXPECT_FALSE(FreeForOthers(lock));
    lock.Unlock();
    EXPECT_TRUE(FreeForOthers(lock));
}

TEST(OCriticalSection, IsUnlockedAsOftenAsItsThreadLockedIt) {
    OCriticalSection lock;
    lock.Lock();
    lock.Lock();
    lock.Unlock();
    EXPECT_FALSE(FreeForOthers(lock));
    lock.Unlock();
    EXPECT_TRUE(FreeForOthers(lock));
}

TEST(OCriticalSection, GuardsACounterAgainstManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    OCriticalSection lock;
    int counter = 0;
    std::vector<std::thread> threads;
    OScopedLock gate(lock); // they all meet here
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                const OScopedLock hold(lock);
                const int before = counter;
                std::this_thread::yield(); // whoever is not kept out comes now
                counter = before + 1;
            }
        });
    }
    gate.Release();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, kThreads * kRounds);
}

TEST(OScopedLock, IsAPointerAndAFlag) {
    EXPECT_EQ(sizeof(OScopedLock), 2 * sizeof(void*));
}

TEST(OScopedLock, LocksOnConstructionAndUnlocksAtTheEndOfItsScope) {
    CountingLock lock;
    {
        const OScopedLock hold(lock);
        EXPECT_EQ(lock.locks, 1);
        EXPECT_EQ(lock.unlocks, 0);
    }
    EXPECT_EQ(lock.unlocks, 1);
}

TEST(OScopedLock, ReleasedTwiceUnlocksOnce) {
    CountingLock lock;
    {
        OScopedLock hold(lock);
        hold.Release();
        EXPECT_EQ(lock.unlocks, 1);
        hold.Release();
        EXPECT_EQ(lock.unlocks, 1);
    }
    EXPECT_EQ(lock.locks, 1);
    EXPECT_EQ(lock.unlocks, 1);
}

} // namespace
