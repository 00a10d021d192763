// What was taken while what was held, in tables of a fixed size: a watch that allocates would show in every
// test that counts allocations.
#include "core/LockOrder.h"

#ifdef KEMBA_LOCK_ORDER

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace OCore {
namespace {

/// A lock that a thread holds, and how often.
struct Held {
    DWORD thread;
    const void* lock;
    unsigned times;
};

/// A lock that was held, and one that was taken meanwhile.
struct Order {
    const void* first;
    const void* second;
};

template<class Entry, std::size_t Size>
struct Table {
    std::array<Entry, Size> entries;
    std::size_t count = 0;

    Entry* begin() { return entries.data(); }
    Entry* end() { return begin() + count; }
    void Add(const Entry& entry) {
        if (count == Size) {
            static_cast<void>(std::fputs("lock order: a table is full\n", stderr));
            std::abort();
        }
        entries[count++] = entry;
    }
    template<class Condition>
    void RemoveIf(Condition condition) {
        count = static_cast<std::size_t>(std::remove_if(begin(), end(), condition) - begin());
    }
};

SRWLOCK tablesLock = SRWLOCK_INIT;
Table<Held, 256> heldLocks;
Table<Order, 4096> orders; // never with a circle in it

class TablesHold {
  public:
    TablesHold() { AcquireSRWLockExclusive(&tablesLock); }
    TablesHold(const TablesHold&) = delete;
    TablesHold& operator=(const TablesHold&) = delete;
    ~TablesHold() { ReleaseSRWLockExclusive(&tablesLock); }
};

Held* FindHeld(const void* lock) {
    const DWORD thread = GetCurrentThreadId();
    Held* const found = std::find_if(heldLocks.begin(), heldLocks.end(), [=](const Held& held) {
        return held.thread == thread && held.lock == lock;
    });
    return found == heldLocks.end() ? nullptr : found;
}

/// Whether the first was held when the second was taken, or a third one that leads to it.
bool Leads(const void* first, const void* second) {
    return std::any_of(orders.begin(), orders.end(), [=](const Order& order) {
        return order.first == first && (order.second == second || Leads(order.second, second));
    });
}

bool IsKnown(const void* first, const void* second) {
    return std::any_of(orders.begin(), orders.end(),
                       [=](const Order& order) { return order.first == first && order.second == second; });
}

} // namespace

void LockIsTaken(const void* lock) noexcept {
    const TablesHold hold;
    if (Held* const again = FindHeld(lock)) {
        ++again->times;
        return;
    }
    const DWORD thread = GetCurrentThreadId();
    for (const Held& held : heldLocks) {
        if (held.thread != thread || IsKnown(held.lock, lock)) {
            continue;
        }
        if (Leads(lock, held.lock)) {
            static_cast<void>(std::fprintf(
                stderr, "lock order: %p is taken while %p is held, and was held when that was taken\n", lock,
                held.lock));
            std::abort();
        }
        orders.Add({held.lock, lock});
    }
    heldLocks.Add({thread, lock, 1});
}

void LockIsGivenBack(const void* lock) noexcept {
    const TablesHold hold;
    Held* const held = FindHeld(lock);
    if (held && --held->times == 0) {
        *held = *(heldLocks.end() - 1);
        --heldLocks.count;
    }
}

void LockIsGone(const void* lock) noexcept {
    const TablesHold hold;
    heldLocks.RemoveIf([=](const Held& held) { return held.lock == lock; });
    orders.RemoveIf([=](const Order& order) { return order.first == lock || order.second == lock; });
}

} // namespace OCore

#endif
