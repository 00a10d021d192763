// What the guarded heap notices; each in a process of its own, which it ends.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "tests/fuzz/Crash.h"
#include "tests/fuzz/GuardedHeap.h"

using namespace kit;

namespace {

/// Hides from the compiler that an address is not to be used.
template<class T>
T* Hidden(T* pointer) {
    T* volatile hidden = pointer;
    return hidden;
}

/// The block of those taken one after the other that lies against the page behind it, or before it.
char* BlockAtEnd(std::size_t size, bool atEnd) {
    char* const block = static_cast<char*>(std::malloc(size));
    const bool isAtEnd = (reinterpret_cast<std::uintptr_t>(block) + size) % 4096 == 0;
    return Hidden(isAtEnd == atEnd ? block : static_cast<char*>(std::malloc(size)));
}

/// Does it on the guarded heap, with crashes reported.
template<class Deed>
void Do(Deed deed) {
    ReportCrashes(nullptr);
    const GuardedHeap guarded;
    deed();
}

class GuardedHeapDeathTest : public testing::Test {};

TEST_F(GuardedHeapDeathTest, AByteWrittenPastTheEnd) {
    EXPECT_EXIT(Do([] { BlockAtEnd(20, true)[20] = 1; }), testing::ExitedWithCode(3),
                "access violation writing .*, 0 bytes past the end of a block of 20 bytes");
}

TEST_F(GuardedHeapDeathTest, AByteReadPastTheEnd) {
    EXPECT_EXIT(Do([] { std::exit(BlockAtEnd(5000, true)[5003]); }), testing::ExitedWithCode(3),
                "access violation reading .*, 3 bytes past the end of a block of 5000 bytes");
}

TEST_F(GuardedHeapDeathTest, AByteWrittenBeforeTheBeginning) {
    EXPECT_EXIT(Do([] { BlockAtEnd(20, false)[-1] = 1; }), testing::ExitedWithCode(3),
                "access violation writing .*, 1 bytes before the beginning of a block of 20 bytes");
}

TEST_F(GuardedHeapDeathTest, AByteWrittenAfterTheBlockWasFreed) {
    EXPECT_EXIT(Do([] {
                    auto* const text = Hidden(new std::string(100, 'a'));
                    char* const characters = Hidden(text->data());
                    delete text;
                    characters[7] = 'b';
                }),
                testing::ExitedWithCode(3),
                "access violation writing .*, byte 7 of a block of 101 bytes that was freed");
}

TEST_F(GuardedHeapDeathTest, WhatTheReallocatedBlockWas) {
    EXPECT_EXIT(Do([] {
                    char* const before = Hidden(static_cast<char*>(std::malloc(10)));
                    static_cast<void>(Hidden(std::realloc(before, 9)));
                    before[0] = 'b';
                }),
                testing::ExitedWithCode(3), "byte 0 of a block of 10 bytes that was freed");
}

TEST_F(GuardedHeapDeathTest, AByteWrittenOnTheOtherSideIsNoticedWhenTheBlockIsFreed) {
    EXPECT_EXIT(Do([] {
                    char* const block = BlockAtEnd(20, true);
                    block[-1] = 1;
                    std::free(block);
                }),
                testing::ExitedWithCode(3), "something was written beside a block");
    EXPECT_EXIT(Do([] {
                    char* const block = BlockAtEnd(20, false);
                    block[20] = 1;
                    std::free(block);
                }),
                testing::ExitedWithCode(3), "something was written beside a block");
    EXPECT_EXIT(Do([] {
                    const AlignedBlocks aligned;
                    char* const block = Hidden(static_cast<char*>(std::malloc(20)));
                    block[20] = 1;
                    std::free(block);
                }),
                testing::ExitedWithCode(3), "something was written beside a block");
}

TEST_F(GuardedHeapDeathTest, ABlockFreedTwice) {
    EXPECT_EXIT(Do([] {
                    char* const block = BlockAtEnd(20, true);
                    std::free(block);
                    std::free(Hidden(block));
                }),
                testing::ExitedWithCode(3), "a block was freed twice");
}

TEST_F(GuardedHeapDeathTest, WhatIsNotTheBeginningOfABlock) {
    EXPECT_EXIT(Do([] { std::free(BlockAtEnd(20, true) + 4); }), testing::ExitedWithCode(3),
                "not the beginning of a block");
}

TEST_F(GuardedHeapDeathTest, TrappedUndefinedBehaviourAndAbortAreReportedToo) {
    EXPECT_EXIT(Do([] {
                    volatile int number = INT_MAX;
                    number = number + 1;
                }),
                testing::ExitedWithCode(3), "undefined behaviour trapped");
    EXPECT_EXIT(Do([] {
                    const std::vector<int> none;
                    volatile std::size_t index = 0;
                    std::exit(none[index]);
                }),
                testing::ExitedWithCode(3), "abort");
    EXPECT_EXIT(Do([] { std::terminate(); }), testing::ExitedWithCode(3), "abort");
}

TEST(GuardedHeap, EveryKindOfBlockIsGuardedAndNoneIsLeft) {
    const std::int64_t before = GuardedHeap::LiveBlocks();
    {
        const GuardedHeap guarded;
        void* const made[] = {std::malloc(0),      std::malloc(1),         std::calloc(3, 7),
                              ::operator new(40),  ::operator new[](4097), std::realloc(nullptr, 12),
                              std::malloc(1 << 20)};
        EXPECT_EQ(GuardedHeap::LiveBlocks(), before + 7);
        for (void* const block : made) {
            EXPECT_TRUE(GuardedHeap::Holds(block));
            std::free(block);
        }
        const auto shared = std::make_shared<int>(1);
        EXPECT_TRUE(GuardedHeap::Holds(shared.get()));
        std::vector<char> bytes(1, 'x');
        EXPECT_TRUE(GuardedHeap::Holds(bytes.data()));
    }
    EXPECT_EQ(GuardedHeap::LiveBlocks(), before);
    EXPECT_EQ(GuardedHeap::Unguarded(), 0U);
}

TEST(GuardedHeap, BlocksKeepWhatIsWrittenAndAreZeroWhereTheyMustBe) {
    const GuardedHeap guarded;
    for (std::size_t size : {1, 16, 4095, 4096, 4097, 70'000}) {
        auto* block = static_cast<char*>(std::calloc(size, 1));
        EXPECT_EQ(std::string(block, size), std::string(size, '\0'));
        std::memset(block, 'x', size);
        block = static_cast<char*>(std::realloc(block, size * 2));
        EXPECT_EQ(std::string(block, size), std::string(size, 'x'));
        std::memset(block, 'y', size * 2);
        block = static_cast<char*>(std::realloc(block, size));
        EXPECT_EQ(std::string(block, size), std::string(size, 'y'));
        std::free(block);
    }
}

TEST(GuardedHeap, BlocksOfTheOrdinaryHeapMayBeFreedWhileGuardingAndTheOtherWayRound) {
    void* ordinary = std::malloc(20);
    EXPECT_FALSE(GuardedHeap::Holds(ordinary));
    void* block = nullptr;
    {
        const GuardedHeap guarded;
        block = std::malloc(20);
        {
            const OrdinaryHeap interval;
            EXPECT_FALSE(GuardedHeap::Holds(std::make_unique<int>(1).get()));
        }
        EXPECT_TRUE(GuardedHeap::Holds(std::make_unique<int>(1).get()));
        std::free(ordinary);
    }
    block = std::realloc(block, 40);
    EXPECT_FALSE(GuardedHeap::Holds(block));
    std::free(block);
}

TEST(GuardedHeap, BlocksLieWhereTheyAreToLie) {
    const auto addressOf = [](std::size_t size) {
        return reinterpret_cast<std::uintptr_t>(std::unique_ptr<char[]>(new char[size]).get());
    };
    for (const bool atEnd : {true, false, true}) {
        const GuardedHeap guarded(atEnd);
        for (const bool isAtEnd : {atEnd, !atEnd}) {
            EXPECT_EQ((addressOf(27) + (isAtEnd ? 27 : 0)) % 4096, 0U);
        }
        const AlignedBlocks aligned;
        for (const bool isAtEnd : {atEnd, !atEnd}) {
            EXPECT_EQ((addressOf(27) + (isAtEnd ? 32 : 0)) % 4096, 0U);
        }
    }
}

TEST(GuardedHeap, AFreedPlaceIsNotTheNextOneGivenOut) {
    const GuardedHeap guarded;
    void* const first = std::malloc(100);
    std::free(first);
    for (int index = 0; index < 1000; ++index) {
        void* const next = std::malloc(100);
        ASSERT_NE(reinterpret_cast<std::uintptr_t>(next) / 4096,
                  reinterpret_cast<std::uintptr_t>(first) / 4096)
            << index;
        std::free(next);
    }
}

} // namespace
