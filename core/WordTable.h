// Tables whose rows are known by a word.
#pragma once

#include <algorithm>
#include <ranges>

#include "core/OString.h"

namespace OCore {

/// The first row whose word equals `word` as `EqualsIgnoreCase` has it, or null. The table outlives the
/// result. The word stands in the row's `word`, or in the column that is named; a row without one there
/// (null) is never found.
template<class Table, class Row = std::ranges::range_value_t<Table>>
const Row* FindRow(const Table& table, const wchar_t* word, const wchar_t* Row::* column = &Row::word) {
    const auto row = std::ranges::find_if(table, [&](const Row& candidate) {
        return candidate.*column && EqualsIgnoreCase(word, candidate.*column);
    });
    return row == std::ranges::end(table) ? nullptr : &*row;
}

} // namespace OCore
