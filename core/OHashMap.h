// A map kept as three parallel arrays sorted by a 32-bit hash of the key.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "core/OArray.h"
#include "core/OString.h"

namespace OCore {

/// CRC-32 (reflected polynomial 0xEDB88320) of a text's 8-bit form, its terminating zero byte included on
/// purpose: the values differ from the plain CRC-32 of the text.
struct StringHash {
    std::uint32_t operator()(const OString& key) const;
};

} // namespace OCore

/// A map sorted ascending by `Hash` of the key; entries with equal hashes stand next to each other and are
/// told apart by `operator==` of the key. A key inserted again stands before its older entry and hides it.
template<class Key, class Value, class Hash>
class OHashMap {
  public:
    std::int32_t GetSize() const { return m_hashes.GetSize(); }

    /// The key's value, or `missing`.
    Value Find(const Key& key, Value missing = Value()) const {
        const std::int32_t index = IndexOf(key);
        if (index < 0) {
            return missing;
        }
        return m_values[index];
    }

    /// False, and the map as it was, when memory is short.
    [[nodiscard]] bool Insert(Key key, Value value) {
        const std::uint32_t hash = Hash()(key);
        const std::int32_t index = PositionOf(hash);
        if (!m_hashes.InsertAt(index, hash)) {
            return false;
        }
        if (!m_keys.InsertAt(index, std::move(key))) {
            m_hashes.RemoveAt(index);
            return false;
        }
        if (!m_values.InsertAt(index, std::move(value))) {
            m_hashes.RemoveAt(index);
            m_keys.RemoveAt(index);
            return false;
        }
        return true;
    }

    /// Removes the key's entry; false when there is none.
    bool Remove(const Key& key) {
        const std::int32_t index = IndexOf(key);
        if (index < 0) {
            return false;
        }
        m_hashes.RemoveAt(index);
        m_keys.RemoveAt(index);
        m_values.RemoveAt(index);
        return true;
    }

    /// The keys in array order, that is by their hashes.
    const OTypedArray<Key>& Keys() const { return m_keys; }

    /// The first position whose hash is not smaller than `hash`, from 0 to the size.
    std::int32_t PositionOf(std::uint32_t hash) const {
        const std::uint32_t* const begin = m_hashes.begin();
        const std::uint32_t* const end = m_hashes.end();
        const std::uint32_t* low = begin + Estimate(hash, GetSize());
        const std::uint32_t* high = low;
        // In strides that double, for the estimate is off by hundreds in a map of a million.
        for (std::ptrdiff_t stride = 1; low != begin && low[-1] >= hash; stride *= 2) {
            high = low - 1;
            low -= std::min(stride, low - begin);
        }
        for (std::ptrdiff_t stride = 1; high != end && *high < hash; stride *= 2) {
            low = high + 1;
            high += std::min(stride, end - high);
        }
        return static_cast<std::int32_t>(std::lower_bound(low, high, hash) - begin);
    }

    /// Where among `size` entries a hash would stand if hashes were spread evenly; the highest, at the end.
    static std::int32_t Estimate(std::uint32_t hash, std::int32_t size) {
        constexpr std::uint32_t kHighest = 0xFFFFFFFF;
        return hash == kHighest
                   ? size
                   : static_cast<std::int32_t>(std::uint64_t{hash} * static_cast<std::uint32_t>(size) >> 32);
    }

  private:
    std::int32_t IndexOf(const Key& key) const {
        const std::uint32_t hash = Hash()(key);
        for (std::int32_t index = PositionOf(hash); index < GetSize() && m_hashes[index] == hash; ++index) {
            if (m_keys[index] == key) {
                return index;
            }
        }
        return -1;
    }

    OTypedArray<std::uint32_t> m_hashes;
    OTypedArray<Key> m_keys;
    OTypedArray<Value> m_values;
};

/// An `OHashMap` keyed by text, case-sensitively.
template<class Value>
using OStringMap = OHashMap<OString, Value, OCore::StringHash>;
