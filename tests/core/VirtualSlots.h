// Where a virtual operation stands in its class's table.
#pragma once

#include <bit>
#include <cstddef>

namespace kit {

/// The slot of a virtual operation, counted from the destructor as 1. A pointer to a virtual member holds the
/// operation's offset in the table plus one, and this compiler gives the destructor two places.
template<class Operation>
std::ptrdiff_t SlotOf(Operation operation) {
    struct Parts {
        std::ptrdiff_t offsetPlusOne;
        std::ptrdiff_t adjustment;
    };
    return (std::bit_cast<Parts>(operation).offsetPlusOne - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

} // namespace kit
