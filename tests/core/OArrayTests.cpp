// Arrays: growth, zero-filling, and elements that own something.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "core/LibraryErrors.h"
#include "core/OArray.h"
#include "core/OString.h"

namespace {

using Numbers = OTypedArray<std::uint32_t>;

/// Reaches what only derived arrays use.
template<std::size_t ElementSize>
struct OpenArray : OBaseArray<ElementSize> {
    using OBaseArray<ElementSize>::OpenGap;
    using OBaseArray<ElementSize>::SetSize;
};

/// Whether anybody may change the size.
template<class Array>
concept Resizable = requires(Array array) { array.SetSize(0); };

// By its base an array would drop elements that it should destroy.
static_assert(!Resizable<OBaseArray<sizeof(void*)>>);
static_assert(Resizable<OTypedArray<std::uint32_t>>);

TEST(RequireMemory, TurnsAFailedGrowthIntoAnException) {
    EXPECT_NO_THROW(OCore::RequireMemory(true));
    EXPECT_THROW(OCore::RequireMemory(false), std::bad_alloc);
}

TEST(OBaseArray, HoldsTableDataSizeCapacityAndGrowBy) {
    EXPECT_EQ(sizeof(OBaseArray<4>), 2 * sizeof(void*) + 3 * sizeof(std::int32_t) + sizeof(std::int32_t));
    EXPECT_TRUE(std::has_virtual_destructor_v<OBaseArray<8>>);
    EXPECT_EQ(sizeof(std::shared_ptr<int>), 16U);
}

TEST(OBaseArray, StartsEmptyWithAutomaticGrowth) {
    const OpenArray<4> array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCapacity(), 0);
    EXPECT_EQ(array.GetGrowBy(), 0);
}

TEST(OBaseArray, AllocatesExactlyTheFirstSize) {
    for (const std::int32_t size : {1, 2, 3, 100, 10'000}) {
        OpenArray<8> array;
        EXPECT_TRUE(array.SetSize(size));
        EXPECT_EQ(array.GetSize(), size);
        EXPECT_EQ(array.GetCapacity(), size);
    }
}

TEST(OBaseArray, GrowsByAnEighthWithin4And1024) {
    const struct {
        std::int32_t size;
        std::int32_t capacityAfterOneMore;
    } rows[] = {{1, 5},   {8, 12},        {32, 36},       {39, 43},       {40, 45},
                {80, 90}, {8'191, 9'214}, {8'192, 9'216}, {8'200, 9'224}, {16'000, 17'024}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        OpenArray<4> array;
        EXPECT_TRUE(array.SetSize(row.size));
        EXPECT_TRUE(array.SetSize(row.size + 1));
        EXPECT_EQ(array.GetSize(), row.size + 1);
        EXPECT_EQ(array.GetCapacity(), row.capacityAfterOneMore);
    }
}

TEST(OBaseArray, TakesItsStepFromTheSizeNotTheCapacity) {
    OpenArray<4> array;
    EXPECT_TRUE(array.SetSize(800));
    EXPECT_TRUE(array.SetSize(80));
    EXPECT_EQ(array.GetCapacity(), 800);
    EXPECT_TRUE(array.SetSize(801));
    EXPECT_EQ(array.GetCapacity(), 810);
}

TEST(OBaseArray, GrowsToTheNewSizeWhenTheStepIsTooSmall) {
    OpenArray<4> array;
    EXPECT_TRUE(array.SetSize(1));
    EXPECT_TRUE(array.SetSize(100));
    EXPECT_EQ(array.GetCapacity(), 100);
}

TEST(OBaseArray, GrowsByTheGivenStepUntilAnotherIsGiven) {
    OpenArray<4> array;
    EXPECT_TRUE(array.SetSize(10, 7));
    EXPECT_EQ(array.GetGrowBy(), 7);
    EXPECT_TRUE(array.SetSize(11));
    EXPECT_EQ(array.GetCapacity(), 17);
    EXPECT_TRUE(array.SetSize(18, -1));
    EXPECT_EQ(array.GetGrowBy(), 7);
    EXPECT_EQ(array.GetCapacity(), 24);
    EXPECT_TRUE(array.SetSize(25, 0));
    EXPECT_EQ(array.GetGrowBy(), 0);
    EXPECT_EQ(array.GetCapacity(), 28);
}

TEST(OBaseArray, OfSize0HasNoCapacityButKeepsItsGrowBy) {
    OpenArray<4> array;
    EXPECT_TRUE(array.SetSize(10, 3));
    EXPECT_TRUE(array.SetSize(0));
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCapacity(), 0);
    EXPECT_EQ(array.GetGrowBy(), 3);
    EXPECT_TRUE(array.SetSize(0));
    EXPECT_TRUE(array.SetSize(2));
    EXPECT_EQ(array.GetCapacity(), 2);
}

TEST(OBaseArray, RefusesANegativeSize) {
    OpenArray<4> array;
    EXPECT_TRUE(array.SetSize(3));
    EXPECT_FALSE(array.SetSize(-1, 9));
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array.GetGrowBy(), 0);
}

TEST(OBaseArray, StaysAsItWasWhenMemoryIsShort) {
    OpenArray<std::size_t{1} << 62> endless; // no address space holds even one element
    EXPECT_FALSE(endless.SetSize(1, 5));
    EXPECT_FALSE(endless.OpenGap(0));
    EXPECT_EQ(endless.GetSize(), 0);
    EXPECT_EQ(endless.GetCapacity(), 0);
    EXPECT_EQ(endless.GetGrowBy(), 0);

    OTypedArray<std::uint32_t> numbers;
    EXPECT_TRUE(numbers.Append(7));
    EXPECT_FALSE(numbers.SetSize(2, std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(numbers.GetSize(), 1);
    EXPECT_EQ(numbers.GetCapacity(), 1);
    EXPECT_EQ(numbers.GetGrowBy(), 0);
    EXPECT_EQ(numbers[0], 7U);
}

TEST(OBaseArray, ThrowsWhenOneMoreElementCannotBeCounted) {
    OpenArray<0> full; // elements without bytes: a full array without the memory for it
    ASSERT_TRUE(full.SetSize(std::numeric_limits<std::int32_t>::max()));
    EXPECT_THROW(static_cast<void>(full.OpenGap(0)), OCore::LengthError);
}

TEST(OTypedArray, FillsNewElementsWithZero) {
    Numbers numbers;
    EXPECT_TRUE(numbers.SetSize(4));
    for (std::int32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(numbers[i], 0U);
        numbers[i] = 0xFFFFFFFF;
    }
    EXPECT_TRUE(numbers.SetSize(2));
    EXPECT_TRUE(numbers.SetSize(4)); // within the capacity
    EXPECT_EQ(numbers[1], 0xFFFFFFFF);
    EXPECT_EQ(numbers[2], 0U);
    EXPECT_EQ(numbers[3], 0U);
    EXPECT_TRUE(numbers.SetSize(100)); // past it
    EXPECT_EQ(numbers[1], 0xFFFFFFFF);
    for (std::int32_t i = 2; i < 100; ++i) {
        EXPECT_EQ(numbers[i], 0U);
    }
}

TEST(OTypedArray, InsertsByMovingTheLaterElementsUp) {
    Numbers numbers;
    EXPECT_TRUE(numbers.InsertAt(0, 3));
    EXPECT_TRUE(numbers.InsertAt(0, 1));
    EXPECT_TRUE(numbers.InsertAt(1, 2));
    EXPECT_TRUE(numbers.Append(4));
    ASSERT_EQ(numbers.GetSize(), 4);
    for (std::int32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(numbers[i], static_cast<std::uint32_t>(i + 1));
    }
    EXPECT_EQ(numbers.GetCapacity(), 5); // 1, then 1 + 4
}

TEST(OTypedArray, RefusesAnElementWhenMemoryIsShort) {
    Numbers numbers;
    EXPECT_TRUE(numbers.SetSize(1, std::numeric_limits<std::int32_t>::max()));
    EXPECT_FALSE(numbers.InsertAt(0, 9));
    EXPECT_EQ(numbers.GetSize(), 1);
    EXPECT_EQ(numbers[0], 0U);
}

TEST(OTypedArray, RemovesByMovingTheLaterElementsDown) {
    Numbers numbers;
    for (const std::uint32_t number : {1U, 2U, 3U}) {
        EXPECT_TRUE(numbers.Append(number));
    }
    numbers.RemoveAt(1);
    ASSERT_EQ(numbers.GetSize(), 2);
    EXPECT_EQ(numbers[0], 1U);
    EXPECT_EQ(numbers[1], 3U);
    numbers.RemoveAt(1);
    numbers.RemoveAt(0);
    EXPECT_EQ(numbers.GetSize(), 0);
    EXPECT_EQ(numbers.GetCapacity(), 0);
}

TEST(OTypedArray, DestroysTheElementsThatGo) {
    const auto owned = std::make_shared<int>(1);
    {
        OTypedArray<std::shared_ptr<int>> owners;
        for (int i = 0; i < 6; ++i) {
            EXPECT_TRUE(owners.InsertAt(0, owned));
        }
        EXPECT_EQ(owned.use_count(), 7);
        owners.RemoveAt(2);
        EXPECT_EQ(owned.use_count(), 6);
        EXPECT_TRUE(owners.SetSize(2));
        EXPECT_EQ(owned.use_count(), 3);
        EXPECT_FALSE(owners.SetSize(-1));
        EXPECT_EQ(owned.use_count(), 3);
        EXPECT_TRUE(owners.SetSize(4));
        EXPECT_EQ(owners[3], nullptr);
        owners.RemoveAll();
        EXPECT_EQ(owned.use_count(), 1);
        EXPECT_TRUE(owners.Append(owned));
    }
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(OStringArray, KeepsWordsInOrder) {
    OStringArray words;
    for (int i = 0; i < 50; ++i) {
        OString word;
        word.Format(L"word %d", i);
        EXPECT_TRUE(words.Append(word));
    }
    words.RemoveAt(0);
    int expected = 1;
    for (const OString& word : words) {
        OString text;
        text.Format(L"word %d", expected++);
        EXPECT_EQ(word, text);
    }
    EXPECT_EQ(expected, 50);
}

TEST(OStringArray, IsEmptyToWalkWhenEmpty) {
    const OStringArray words;
    EXPECT_EQ(words.begin(), words.end());
}

} // namespace
