// Maps sorted by hash: the hash itself, positions, equal hashes.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "core/OHashMap.h"
#include "tests/core/FailingGrowth.h"

using namespace kit;

namespace {

/// A key that is its own hash, but for a name that tells keys of one hash apart.
struct NamedHash {
    std::uint32_t hash = 0;
    int name = 0;
    bool operator==(const NamedHash& other) const { return hash == other.hash && name == other.name; }
};
struct HashOf {
    std::uint32_t operator()(const NamedHash& key) const { return key.hash; }
};
using NamedMap = OHashMap<NamedHash, int, HashOf>;

TEST(StringHash, IsTheCrc32WithTheTerminatingZero) {
    const struct {
        const char* text;
        std::uint32_t hash;
    } rows[] = {
        {"", 0xD202EF8D},
        {"a", 0x3D3F4819},
        {"123456789", 0x00C49E49},
        {"Brandle KEMBA CLI", 0x20F7B447},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(OCore::StringHash()(row.text), row.hash);
    }
    EXPECT_EQ(OCore::StringHash()(OString()), 0xD202EF8DU);
    EXPECT_NE(OCore::StringHash()("123456789"), 0xCBF43926U); // the plain CRC-32 of that text
}

TEST(StringHash, IsTakenOverThe8BitForm) {
    EXPECT_EQ(OCore::StringHash()(OString("\x80", 1252)), 0x7A5A8AB4U);
    EXPECT_EQ(OCore::StringHash()(L"Brandle KEMBA CLI"), OCore::StringHash()("Brandle KEMBA CLI"));
    EXPECT_NE(OCore::StringHash()("a"), OCore::StringHash()("A"));
}

TEST(OHashMap, EstimatesAPositionByTheShareOfTheHash) {
    const struct {
        std::uint32_t hash;
        std::int32_t size;
        std::int32_t position;
    } rows[] = {
        {0, 0, 0},
        {0, 10, 0},
        {0x7FFFFFFF, 10, 4},
        {0x80000000, 10, 5},
        {0xFFFFFFFE, 10, 9},
        {0xFFFFFFFF, 10, 10},
        {0xFFFFFFFF, 0, 0},
        {0x19999999, 10, 0},
        {0x1999999A, 10, 1},
        {0xC0000000, 4, 3},
        {0xFFFFFFFF, 1'000'000'000, 1'000'000'000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.hash << " of " << row.size);
        EXPECT_EQ(NamedMap::Estimate(row.hash, row.size), row.position);
    }
}

TEST(OHashMap, FindsTheFirstPositionWhoseHashIsNotSmaller) {
    NamedMap map;
    EXPECT_EQ(map.PositionOf(5), 0);
    EXPECT_EQ(map.PositionOf(0xFFFFFFFF), 0);
    for (const std::uint32_t hash : {10U, 20U, 20U, 20U, 0xF0000000U, 0xFFFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_TRUE(map.Insert({hash, 0}, 0));
    }
    const struct {
        std::uint32_t hash;
        std::int32_t position;
    } rows[] = {{0, 0},          {10, 0},         {11, 1},         {20, 1},         {21, 4},
                {0x80000000, 4}, {0xF0000000, 4}, {0xF0000001, 5}, {0xFFFFFFFE, 5}, {0xFFFFFFFF, 5}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hash);
        EXPECT_EQ(map.PositionOf(row.hash), row.position);
    }
}

TEST(OHashMap, FindsPositionsFarFromWhereTheyAreEstimated) {
    constexpr std::uint32_t kEntries = 300;
    for (const std::uint32_t start :
         {0U, 0xFFFFFFFF - 2 * kEntries}) { // all estimated at one end, or at the other
        NamedMap map;
        for (std::uint32_t entry = 0; entry < kEntries; ++entry) {
            EXPECT_TRUE(map.Insert({start + 2 * entry, 0}, 0));
        }
        for (std::uint32_t entry = 0; entry < kEntries; ++entry) {
            EXPECT_EQ(map.PositionOf(start + 2 * entry), static_cast<std::int32_t>(entry));
            EXPECT_EQ(map.PositionOf(start + 2 * entry + 1), static_cast<std::int32_t>(entry + 1));
        }
    }
}

TEST(OHashMap, AnInsertThatMemoryIsTooShortForLeavesTheMapAsItWas) {
    for (int growth = 1; growth <= 3; ++growth) { // of the hashes, the keys, the values
        SCOPED_TRACE(growth);
        NamedMap map;
        EXPECT_TRUE(map.Insert({10, 1}, 1));
        {
            const FailingGrowth failing(growth);
            EXPECT_FALSE(map.Insert({10, 2}, 2));
            EXPECT_TRUE(failing.HasFailed());
        }
        EXPECT_EQ(map.GetSize(), 1);
        EXPECT_EQ(map.Keys().GetSize(), 1);
        EXPECT_EQ(map.Find({10, 2}, -1), -1);
        EXPECT_EQ(map.Find({10, 1}, -1), 1);
        EXPECT_TRUE(map.Insert({10, 2}, 2));
        EXPECT_EQ(map.Find({10, 2}, -1), 2);
        EXPECT_EQ(map.Find({10, 1}, -1), 1);
    }
}

TEST(OHashMap, MayBeGivenOneOfItsOwnKeys) {
    OStringMap<int> map;
    EXPECT_TRUE(map.Insert("a", 1));
    EXPECT_TRUE(map.Insert(map.Keys()[0], 2));
    EXPECT_EQ(map.Find("a", 0), 2);
}

TEST(OHashMap, KeepsItsKeysSortedByHash) {
    NamedMap map;
    std::uint32_t hash = 1;
    for (int i = 0; i < 500; ++i) {
        hash = hash * 1'664'525 + 1'013'904'223;
        EXPECT_TRUE(map.Insert({hash, i}, i));
    }
    ASSERT_EQ(map.GetSize(), 500);
    ASSERT_EQ(map.Keys().GetSize(), 500);
    for (std::int32_t i = 1; i < 500; ++i) {
        EXPECT_LE(map.Keys()[i - 1].hash, map.Keys()[i].hash);
    }
    for (const NamedHash& key : map.Keys()) {
        EXPECT_EQ(map.Find(key, -1), key.name);
    }
}

TEST(OHashMap, TellsKeysOfOneHashApart) {
    NamedMap map;
    EXPECT_TRUE(map.Insert({7, 1}, 100));
    EXPECT_TRUE(map.Insert({7, 2}, 200));
    EXPECT_TRUE(map.Insert({8, 1}, 300));
    EXPECT_EQ(map.Find({7, 1}), 100);
    EXPECT_EQ(map.Find({7, 2}), 200);
    EXPECT_EQ(map.Find({7, 3}, -1), -1);
    EXPECT_TRUE(map.Remove({7, 2}));
    EXPECT_EQ(map.Find({7, 1}), 100);
    EXPECT_EQ(map.Find({7, 2}, -1), -1);
    EXPECT_EQ(map.Find({8, 1}), 300);
}

TEST(OHashMap, GivesTheDefaultForAMissingKey) {
    const OStringMap<std::shared_ptr<int>> empty;
    EXPECT_EQ(empty.Find("missing"), nullptr);
    EXPECT_EQ(OStringMap<int>().Find("missing", 5), 5);

    OStringMap<int> map;
    EXPECT_TRUE(map.Insert("present", 1));
    EXPECT_EQ(map.Find("missing", 5), 5);
    EXPECT_EQ(map.Find("present", 5), 1);
}

TEST(OHashMap, KeyedByTextMindsTheCase) {
    OStringMap<int> map;
    EXPECT_TRUE(map.Insert("Source", 1));
    EXPECT_TRUE(map.Insert(L"SOURCE", 2));
    EXPECT_EQ(map.Find(L"Source"), 1);
    EXPECT_EQ(map.Find("SOURCE"), 2);
    EXPECT_EQ(map.Find("source", -1), -1);
}

TEST(OHashMap, AnswersWithTheLatestOfTwoEntriesOfOneKey) {
    OStringMap<int> map;
    EXPECT_TRUE(map.Insert("key", 1));
    EXPECT_TRUE(map.Insert("key", 2));
    EXPECT_EQ(map.GetSize(), 2);
    EXPECT_EQ(map.Find("key"), 2);
    EXPECT_TRUE(map.Remove("key"));
    EXPECT_EQ(map.Find("key"), 1);
}

TEST(OHashMap, RemovesAnEntryWithItsValue) {
    OStringMap<std::shared_ptr<int>> map;
    const auto value = std::make_shared<int>(1);
    EXPECT_TRUE(map.Insert("a", value));
    EXPECT_TRUE(map.Insert("b", value));
    EXPECT_FALSE(map.Remove("c"));
    EXPECT_TRUE(map.Remove("a"));
    EXPECT_FALSE(map.Remove("a"));
    EXPECT_EQ(map.GetSize(), 1);
    EXPECT_EQ(value.use_count(), 2);
    EXPECT_EQ(map.Find("b"), value);
}

} // namespace
