// The hash maps against the standard multimap by hash, in which a newer entry stands before an older one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/OHashMap.h"
#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/fuzz/TextModel.h"

using namespace kit;

namespace {

/// Few hashes for many keys, the lowest and the highest among them.
constexpr std::uint32_t kHashes[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xC0000000, 0xFFFFFFFE, 0xFFFFFFFF};

struct FewHashes {
    std::uint32_t operator()(int key) const {
        return key % 2 == 0 ? kHashes[static_cast<std::size_t>(key / 2) % std::size(kHashes)]
                            : static_cast<std::uint32_t>(key) * 2'654'435'761U;
    }
};

/// CRC-32 bit by bit over the 8-bit form and its closing zero.
std::uint32_t HashOfText(const std::string& key) {
    std::uint32_t value = 0xFFFFFFFF;
    for (std::size_t at = 0; at <= key.size(); ++at) {
        value ^= static_cast<unsigned char>(at < key.size() ? key[at] : '\0');
        for (int bit = 0; bit < 8; ++bit) {
            value = value / 2 ^ (value % 2 != 0 ? 0xEDB88320U : 0U);
        }
    }
    return value ^ 0xFFFFFFFF;
}

/// The entries by their hashes.
template<class Key>
class Model {
  public:
    void Insert(std::uint32_t hash, const Key& key, int value) {
        m_entries.emplace_hint(m_entries.lower_bound(hash), hash, std::pair(key, value));
    }
    int Find(std::uint32_t hash, const Key& key, int missing) {
        const auto found = Place(hash, key);
        return found ? (*found)->second.second : missing;
    }
    bool Remove(std::uint32_t hash, const Key& key) {
        const auto found = Place(hash, key);
        if (found) {
            m_entries.erase(*found);
        }
        return found.has_value();
    }
    std::ptrdiff_t PositionOf(std::uint32_t hash) const {
        return std::distance(m_entries.begin(), m_entries.lower_bound(hash));
    }
    const auto& Entries() const { return m_entries; }

  private:
    using Entries_ = std::multimap<std::uint32_t, std::pair<Key, int>>;

    std::optional<typename Entries_::iterator> Place(std::uint32_t hash, const Key& key) {
        for (auto [entry, end] = m_entries.equal_range(hash); entry != end; ++entry) {
            if (entry->second.first == key) {
                return entry;
            }
        }
        return std::nullopt;
    }

    Entries_ m_entries;
};

/// Compares order and keys; `same` tells whether a key of the map is one of the model.
template<class Map, class Key, class Same>
void Compare(const Map& map, const Model<Key>& model, Same same) {
    const OrdinaryHeap ordinary;
    const auto keys = [](const auto& entry) { return entry.second.first; };
    std::vector<Key> expected;
    std::transform(model.Entries().begin(), model.Entries().end(), std::back_inserter(expected), keys);
    EXPECT_EQ(map.GetSize(), static_cast<std::int32_t>(expected.size()));
    EXPECT_TRUE(std::equal(map.Keys().begin(), map.Keys().end(), expected.begin(), expected.end(), same));
}

FUZZ_TARGET(HashMaps, 4000) {
    OHashMap<int, int, FewHashes> map;
    Model<int> model;
    input.Say([] { return "OHashMap<int, int, FewHashes> map;"; });
    for (std::size_t left = 1 + input.Below(60); left > 0 && !testing::Test::HasFailure(); --left) {
        const int key = static_cast<int>(input.Below(40));
        const std::uint32_t hash = FewHashes()(key);
        const std::string name = std::to_string(key);
        switch (input.Below(5)) {
        case 0:
        case 1: {
            const int value = static_cast<int>(input.Below(1000));
            input.Say([&] { return "map.Insert(" + name + ", " + std::to_string(value) + ");"; });
            EXPECT_TRUE(map.Insert(key, value));
            model.Insert(hash, key, value);
            break;
        }
        case 2:
            input.Say([&] { return "map.Remove(" + name + ");"; });
            EXPECT_EQ(map.Remove(key), model.Remove(hash, key));
            break;
        case 3: EXPECT_EQ(map.PositionOf(hash), model.PositionOf(hash)); break;
        default:
            input.Say([&] { return "map.Find(" + name + ", -7);"; });
            EXPECT_EQ(map.Find(key, -7), model.Find(hash, key, -7));
            break;
        }
        Compare(map, model, std::equal_to<int>());
    }
}

/// A text as a key: equal keys have equal hashes, that is equal 8-bit forms, and compare as equal.
struct TextKey {
    OString text;
    TextModel model;

    bool operator==(const TextKey& other) const { return model.Compare(other.model) == 0; }
};

/// A new key, in either form.
TextKey DrawKey(Case& input) {
    const std::wstring units = input.OnceIn(3) ? input.WideText(50) : input.Name(3);
    if (input.OnceIn(2)) {
        input.Say([&] { return "OString key = " + Literal(units) + ";"; });
        return {OString(units.c_str()), TextModel::Wide(units)};
    }
    const std::string bytes = NarrowOf(units, kAnsi);
    input.Say([&] { return "OString key = " + Literal(bytes) + ";"; });
    return {OString(bytes.c_str()), TextModel::Narrow(bytes, kAnsi)};
}

FUZZ_TARGET(TextMaps, 2000) {
    OStringMap<int> map;
    Model<TextKey> model;
    std::vector<TextKey> keys;
    input.Say([] { return "OStringMap<int> map;"; });
    for (std::size_t left = 1 + input.Below(24); left > 0 && !testing::Test::HasFailure(); --left) {
        if (keys.empty() || input.OnceIn(3)) {
            keys.push_back(DrawKey(input));
        }
        const TextKey key = input.OneOf(keys);
        const std::uint32_t hash = HashOfText(key.model.NarrowForm());
        const std::string name = Literal(key.model.NarrowForm());
        switch (input.Below(4)) {
        case 0:
        case 1: {
            const int value = static_cast<int>(input.Below(1000));
            input.Say([&] { return "map.Insert(" + name + ", " + std::to_string(value) + ");"; });
            EXPECT_TRUE(map.Insert(key.text, value));
            model.Insert(hash, key, value);
            break;
        }
        case 2:
            input.Say([&] { return "map.Remove(" + name + ");"; });
            EXPECT_EQ(map.Remove(key.text), model.Remove(hash, key));
            break;
        default:
            input.Say([&] { return "map.Find(" + name + ", -7);"; });
            EXPECT_EQ(map.Find(key.text, -7), model.Find(hash, key, -7));
            break;
        }
        Compare(map, model, [](const OString& text, const TextKey& other) {
            return text.Narrow() == other.model.NarrowForm();
        });
    }
}

} // namespace
