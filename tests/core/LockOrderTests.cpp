// The debug build's watch over the order in which locks are taken.
#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "core/OSynchronizer.h"
#include "tests/kit/AtOnce.h"

using namespace kit;

namespace {

constexpr char kWord[] = "lock order: .* is taken while .* is held";

void TakeBoth(OSynchronizer& first, OSynchronizer& second) {
    const OScopedLock holdFirst(first);
    const OScopedLock holdSecond(second);
}

TEST(LockOrder, OfTwoLocksTheOtherWayRoundEndsTheProcess) {
    OCriticalSection one;
    OCriticalSection two;
    TakeBoth(one, two);
    TakeBoth(one, two);
    EXPECT_DEATH(TakeBoth(two, one), kWord);
}

TEST(LockOrder, OfAnotherThreadCountsAsWell) {
    OCriticalSection one;
    OCriticalSection two;
    std::thread([&] { TakeBoth(one, two); }).join();
    EXPECT_DEATH(TakeBoth(two, one), kWord);
}

TEST(LockOrder, GoesThroughFurtherLocks) {
    OCriticalSection locks[4];
    TakeBoth(locks[0], locks[1]);
    TakeBoth(locks[2], locks[3]);
    TakeBoth(locks[1], locks[2]);
    TakeBoth(locks[0], locks[3]);
    EXPECT_DEATH(TakeBoth(locks[3], locks[0]), kWord);
}

TEST(LockOrder, IsThatOfAllLocksThatAreHeld) {
    OCriticalSection locks[3];
    {
        const OScopedLock hold(locks[0]);
        TakeBoth(locks[1], locks[2]);
    }
    EXPECT_DEATH(TakeBoth(locks[2], locks[0]), kWord);
}

TEST(LockOrder, IsNoMatterWhereALockIsTakenAgain) {
    OCriticalSection one;
    OCriticalSection two;
    for (int round = 0; round < 2; ++round) {
        const OScopedLock hold(one);
        const OScopedLock holdOther(two);
        const OScopedLock again(one);
    }
    EXPECT_DEATH(TakeBoth(two, one), kWord); // what was taken before still counts
}

TEST(LockOrder, EndsWithTheLastUnlocking) {
    OCriticalSection one;
    OCriticalSection two;
    one.Lock();
    one.Lock();
    one.Unlock();
    one.Unlock();
    two.Lock(); // while nothing is held
    two.Unlock();
    TakeBoth(two, one);
    EXPECT_DEATH(TakeBoth(one, two), kWord);
}

TEST(LockOrder, IsForgottenWithTheLock) {
    OCriticalSection stays;
    for (int round = 0; round < 1000; ++round) { // the heap gives the same place again
        auto goes = std::make_unique<OCriticalSection>();
        round % 2 == 0 ? TakeBoth(stays, *goes) : TakeBoth(*goes, stays);
    }
}

TEST(LockOrder, OfManyThreadsThatKeepToItIsFine) {
    OCriticalSection locks[5];
    int counter = 0;
    AtOnce(8, [&](int) {
        for (int round = 0; round < 200; ++round) {
            for (int first = 0; first < 4; ++first) {
                TakeBoth(locks[first], locks[4]);
            }
            const OScopedLock hold(locks[4]);
            ++counter;
        }
    });
    EXPECT_EQ(counter, 1600);
}

} // namespace
