// Finding keys, beside the standard library's hash map with the same keys.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/micro/Micro.h"
#include "core/OArray.h"
#include "core/OHashMap.h"
#include "core/OString.h"

namespace {

using Map = OStringMap<std::int32_t>;
using BareMap = std::unordered_map<std::string, std::int32_t>;

/// In an order of no meaning, as a program asks for them.
std::vector<std::string> Keys(std::size_t size, const std::string& start) {
    constexpr std::size_t kStep = 7919; // a prime, so that every number comes once
    std::vector<std::string> keys;
    keys.reserve(size);
    for (std::size_t number = 0; number < size; ++number) {
        keys.push_back(start + std::to_string(number * kStep % size));
    }
    return keys;
}

/// Made once for each size: keys that come in the order of their hashes move nothing, and a million of any
/// other order takes hours.
const Map& MapOf(std::size_t size) {
    static std::map<std::size_t, std::unique_ptr<Map>> maps;
    std::unique_ptr<Map>& map = maps[size];
    if (!map) {
        map = std::make_unique<Map>();
        std::vector<OString> keys;
        for (const std::string& key : Keys(size, "Printer ")) {
            keys.emplace_back(key.c_str());
        }
        const OCore::StringHash hash;
        std::sort(keys.begin(), keys.end(),
                  [hash](const OString& left, const OString& right) { return hash(left) < hash(right); });
        for (const OString& key : keys) {
            OCore::RequireMemory(map->Insert(key, map->GetSize()));
        }
    }
    return *map;
}

BareMap BareMapOf(std::size_t size) {
    BareMap map;
    for (const std::string& key : Keys(size, "Printer ")) {
        map.emplace(key, static_cast<std::int32_t>(map.size()));
    }
    return map;
}

/// One key after the other, from the start again after the last.
template<class Key>
class Asked {
  public:
    explicit Asked(const std::vector<std::string>& keys) {
        for (const std::string& key : keys) {
            m_keys.emplace_back(key.c_str());
        }
    }

    const Key& Next() {
        m_next = m_next + 1 < m_keys.size() ? m_next + 1 : 0;
        return m_keys[m_next];
    }

  private:
    std::vector<Key> m_keys;
    std::size_t m_next = 0;
};

} // namespace

void micro::RegisterMap() {
    const struct {
        const char* name;
        const char* start; // of the keys that are asked for
    } searches[] = {{"Map/Hit/", "Printer "}, {"Map/Miss/", "Scanner "}};
    for (const auto& search : searches) {
        for (const std::size_t size : kSizes) {
            const auto keys = [start = search.start, size] { return Keys(size, start); };
            Pair(
                search.name + std::to_string(size),
                [keys, size] {
                    return [&map = MapOf(size), asked = Asked<OString>(keys())]() mutable {
                        return map.Find(asked.Next(), -1);
                    };
                },
                [keys, size] {
                    return [map = BareMapOf(size), asked = Asked<std::string>(keys())]() mutable {
                        const auto found = map.find(asked.Next());
                        return found == map.end() ? -1 : found->second;
                    };
                });
        }
    }
}
