// Places of one data size each, between inaccessible pages.
#include "tests/fuzz/GuardedHeap.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "tests/fuzz/Crash.h"

// The linker sends the calls of everything that is linked here to "wrap" and calls the runtime library's own
// "real".
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace kit {
namespace {

constexpr std::size_t kPage = 4096;
constexpr BYTE kFresh = 0xCD;         // what a new block is filled with
constexpr BYTE kBeside = 0xA5;        // what stands beside a block in its own pages
constexpr std::size_t kLookedAt = 64; // bytes beside a block that are looked at when it is freed

/// More live places than this would come to more mappings than the host allows a process.
constexpr std::int64_t kMostLive = 20'000;

enum class State : std::uint8_t { Fresh, Live, Freed };

struct Place {
    std::uint32_t size = 0;   // bytes of the block
    std::uint32_t next = 0;   // of the freed places, in the order in which they were freed
    std::uint32_t offset = 0; // of the block in the data
    std::uint64_t number = 0; // of the block among all that were taken
    State state = State::Fresh;
};

std::atomic<bool> g_guarding{false};
std::atomic<std::size_t> g_alignment{1}; // of blocks at the end
std::atomic<std::int64_t> g_live{0};
std::atomic<std::uint64_t> g_taken{0};
std::atomic<std::uint64_t> g_unguarded{0};

[[noreturn]] void Fault(const char* what, const void* block) {
    char text[200];
    std::snprintf(text, sizeof(text), "%s (block at %p)", what, block);
    Crash(text);
}

/// All places with the same number of data pages: page, data, page, data, page. Everything is reserved at
/// once, and data pages are committed when they are first used.
class Places {
  public:
    void Reserve(std::size_t pages, std::uint32_t count) {
        m_bytes = pages * kPage;
        m_stride = m_bytes + kPage;
        m_count = count;
        m_rest = std::clamp<std::uint32_t>(static_cast<std::uint32_t>((std::size_t{1} << 22) / m_bytes), 2,
                                           count / 2);
        m_base =
            static_cast<BYTE*>(VirtualAlloc(nullptr, m_stride * count + kPage, MEM_RESERVE, PAGE_NOACCESS));
        m_places = static_cast<Place*>(
            VirtualAlloc(nullptr, sizeof(Place) * count, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        if (!m_base || !m_places) {
            Crash("the guarded heap cannot be reserved");
        }
    }

    /// Where the next block lies, so that a run can be repeated.
    void BeginAt(bool end) { m_atEnd = end; }

    bool Holds(const void* address) const {
        const auto* const byte = static_cast<const BYTE*>(address);
        return byte >= m_base && byte < m_base + m_stride * m_count + kPage;
    }

    /// A block of at most as many bytes as the data pages have; null when all places are live.
    void* Take(std::size_t size) {
        std::uint32_t index = m_used;
        if (m_used < m_count && m_freed <= m_rest) {
            ++m_used;
            if (!VirtualAlloc(Data(index), m_bytes, MEM_COMMIT, PAGE_READWRITE)) {
                return nullptr;
            }
        } else if (m_freed > 0) {
            index = m_oldest;
            m_oldest = m_places[index].next;
            --m_freed;
            Protect(index, PAGE_READWRITE);
        } else {
            return nullptr;
        }
        Place& place = m_places[index];
        place.size = static_cast<std::uint32_t>(size);
        place.number = ++g_taken;
        place.offset = m_atEnd ? static_cast<std::uint32_t>((m_bytes - size) / g_alignment * g_alignment) : 0;
        place.state = State::Live;
        m_atEnd = !m_atEnd;
        BYTE* const block = Block(index);
        std::memset(block, kFresh, size);
        ForBeside(index, [](BYTE& byte) { byte = kBeside; });
        return block;
    }

    std::size_t SizeOf(const void* block) const {
        const std::uint32_t index = IndexOf(block);
        Check(index, block);
        return m_places[index].size;
    }

    void Free(void* block) {
        const std::uint32_t index = IndexOf(block);
        Check(index, block);
        ForBeside(index, [block](const BYTE& byte) {
            if (byte != kBeside) {
                Fault("something was written beside a block", block);
            }
        });
        m_places[index].state = State::Freed;
        Protect(index, PAGE_NOACCESS);
        (m_freed == 0 ? m_oldest : m_places[m_latest].next) = index;
        m_latest = index;
        ++m_freed;
    }

    /// Adds a line for each live block that was taken after so many.
    void ListSince(std::uint64_t taken, std::string& list) const {
        constexpr std::uint32_t kShown = 32; // bytes
        for (std::uint32_t index = 0; index < m_used; ++index) {
            const Place& place = m_places[index];
            if (place.state == State::Live && place.number > taken) {
                list += "\n  " + std::to_string(place.size) + " bytes:";
                for (std::uint32_t at = 0; at < std::min(place.size, kShown); ++at) {
                    char text[4];
                    std::snprintf(text, sizeof(text), " %02X", static_cast<unsigned>(Block(index)[at]));
                    list += text;
                }
            }
        }
    }

    void Describe(const BYTE* address, char* text, std::size_t room) const {
        const std::size_t offset = static_cast<std::size_t>(address - m_base);
        const std::size_t index = offset / m_stride;
        const bool inData = offset % m_stride >= kPage;
        if (inData || index == m_count) {
            DescribeAt(static_cast<std::uint32_t>(std::min<std::size_t>(index, m_count - 1)), address, text,
                       room);
            return;
        }
        // A page between two places belongs to the block that is nearer.
        const auto distance = [&](std::size_t of) {
            const BYTE* const block = Block(static_cast<std::uint32_t>(of));
            return address < block ? block - address : address - block - m_places[of].size;
        };
        const bool before = index > 0 && m_places[index - 1].state != State::Fresh &&
                            (m_places[index].state == State::Fresh || distance(index - 1) < distance(index));
        DescribeAt(static_cast<std::uint32_t>(before ? index - 1 : index), address, text, room);
    }

  private:
    BYTE* Data(std::uint32_t index) const { return m_base + index * m_stride + kPage; }

    BYTE* Block(std::uint32_t index) const { return Data(index) + m_places[index].offset; }

    std::uint32_t IndexOf(const void* block) const {
        const auto offset = static_cast<std::size_t>(static_cast<const BYTE*>(block) - m_base);
        // A block of no bytes at the end begins where its data ends.
        return static_cast<std::uint32_t>((offset - kPage - (offset % m_stride == 0 ? 1 : 0)) / m_stride);
    }

    void Check(std::uint32_t index, const void* block) const {
        if (index >= m_used || m_places[index].state != State::Live) {
            Fault("a block was freed twice, or used after it was freed", block);
        }
        if (Block(index) != block) {
            Fault("what was to be freed is not the beginning of a block", block);
        }
    }

    template<class Look>
    void ForBeside(std::uint32_t index, Look look) {
        const Place& place = m_places[index];
        BYTE* const block = Block(index);
        const std::size_t behind = m_bytes - place.offset - place.size;
        std::for_each(block - std::min<std::size_t>(kLookedAt, place.offset), block, look);
        std::for_each(block + place.size, block + place.size + std::min(kLookedAt, behind), look);
    }

    void Protect(std::uint32_t index, DWORD protection) const {
        DWORD before = 0;
        if (!VirtualProtect(Data(index), m_bytes, protection, &before)) {
            Crash("the guarded heap cannot protect its pages");
        }
    }

    void DescribeAt(std::uint32_t index, const BYTE* address, char* text, std::size_t room) const {
        const Place& place = m_places[index];
        if (place.state == State::Fresh) {
            std::snprintf(text, room, "in pages of the heap that were never used");
            return;
        }
        const BYTE* const block = Block(index);
        const unsigned size = place.size;
        const char* const freed = place.state == State::Freed ? " that was freed" : "";
        const auto between = [](const BYTE* from, const BYTE* to) {
            return static_cast<long long>(to - from);
        };
        if (address < block) {
            std::snprintf(text, room, "%lld bytes before the beginning of a block of %u bytes%s",
                          between(address, block), size, freed);
        } else if (address >= block + size) {
            std::snprintf(text, room, "%lld bytes past the end of a block of %u bytes%s",
                          between(block + size, address), size, freed);
        } else {
            std::snprintf(text, room, "byte %lld of a block of %u bytes%s", between(block, address), size,
                          freed);
        }
    }

    BYTE* m_base = nullptr;
    Place* m_places = nullptr;
    std::size_t m_bytes = 0;  // of the data of one place
    std::size_t m_stride = 0; // from place to place
    std::uint32_t m_count = 0;
    std::uint32_t m_used = 0; // places that have been used
    std::uint32_t m_rest = 0; // freed places that are not used again while there are fresh ones
    std::uint32_t m_freed = 0;
    std::uint32_t m_oldest = 0;
    std::uint32_t m_latest = 0;
    bool m_atEnd = false; // the next block
};

/// Places by the power of two of their data pages: 4 KiB to 32 MiB.
constexpr std::size_t kSizes = 14;

class Heap {
  public:
    Heap() {
        for (std::size_t size = 0; size < kSizes; ++size) {
            m_sizes[size].Reserve(std::size_t{1} << size, std::max<std::uint32_t>(32'768U >> size, 8));
        }
    }

    Places* PlacesOf(const void* block) {
        for (Places& places : m_sizes) {
            if (places.Holds(block)) {
                return &places;
            }
        }
        return nullptr;
    }

    void BeginAt(bool end) {
        for (Places& places : m_sizes) {
            places.BeginAt(end);
        }
    }

    void ListSince(std::uint64_t taken, std::string& list) const {
        for (const Places& places : m_sizes) {
            places.ListSince(taken, list);
        }
    }

    void* Take(std::size_t size) {
        for (std::size_t index = 0; index < kSizes; ++index) {
            if (size <= kPage << index) {
                if (void* const block = g_live < kMostLive ? m_sizes[index].Take(size) : nullptr) {
                    ++g_live;
                    return block;
                }
                break;
            }
        }
        ++g_unguarded;
        return nullptr;
    }

  private:
    std::array<Places, kSizes> m_sizes;
};

SRWLOCK g_lock = SRWLOCK_INIT;

class Hold {
  public:
    Hold() { AcquireSRWLockExclusive(&g_lock); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() { ReleaseSRWLockExclusive(&g_lock); }
};

alignas(Heap) BYTE g_storage[sizeof(Heap)];
std::atomic<Heap*> g_heap{nullptr}; // made when first guarding; never ended

void* TakeGuarded(std::size_t size) {
    if (!g_guarding) {
        return nullptr;
    }
    const Hold hold;
    return g_heap.load()->Take(size);
}

/// Where a block lies that is guarded; null for any other.
Places* PlacesOf(const void* block) {
    Heap* const heap = g_heap;
    return heap ? heap->PlacesOf(block) : nullptr;
}

} // namespace

GuardedHeap::GuardedHeap(bool beginAtEnd) {
    if (!g_heap) {
        g_heap = new (g_storage) Heap;
    }
    g_heap.load()->BeginAt(beginAtEnd);
    g_guarding = true;
}

GuardedHeap::~GuardedHeap() {
    g_guarding = false;
}

std::int64_t GuardedHeap::LiveBlocks() {
    return g_live;
}

std::uint64_t GuardedHeap::Taken() {
    return g_taken;
}

std::string GuardedHeap::ListSince(std::uint64_t taken) {
    const OrdinaryHeap ordinary;
    std::string list;
    g_heap.load()->ListSince(taken, list);
    return list;
}

std::uint64_t GuardedHeap::Unguarded() {
    return g_unguarded;
}

bool GuardedHeap::Holds(const void* block) {
    return PlacesOf(block) != nullptr;
}

void GuardedHeap::Describe(const void* address, char* text, std::size_t room) {
    text[0] = 0;
    if (const Places* const places = PlacesOf(address)) {
        places->Describe(static_cast<const BYTE*>(address), text, room);
    }
}

AlignedBlocks::AlignedBlocks() {
    g_alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
}

AlignedBlocks::~AlignedBlocks() {
    g_alignment = 1;
}

OrdinaryHeap::OrdinaryHeap() : m_before(g_guarding.exchange(false)) {}

OrdinaryHeap::~OrdinaryHeap() {
    g_guarding = m_before;
}

} // namespace kit

void* __wrap_malloc(std::size_t size) {
    void* const block = kit::TakeGuarded(size);
    return block ? block : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (size != 0 && count > SIZE_MAX / size) {
        return nullptr;
    }
    void* const block = kit::TakeGuarded(count * size);
    return block ? std::memset(block, 0, count * size) : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size) {
    kit::Places* const places = kit::PlacesOf(block);
    if (!places) {
        return block ? __real_realloc(block, size) : __wrap_malloc(size);
    }
    if (size == 0) {
        __wrap_free(block);
        return nullptr;
    }
    // Never in place: who keeps the old address is to be caught.
    void* const moved = __wrap_malloc(size);
    if (moved) {
        std::memcpy(moved, block, std::min(places->SizeOf(block), size));
        __wrap_free(block);
    }
    return moved;
}

void __wrap_free(void* block) {
    if (kit::Places* const places = kit::PlacesOf(block)) {
        const kit::Hold hold;
        places->Free(block);
        --kit::g_live;
    } else {
        __real_free(block);
    }
}
