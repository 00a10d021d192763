// A heap that notices at once what touches memory that is not its own; linked in the place of malloc and its
// kin.
//
// Every block lies against an inaccessible page, at the end of its pages and at their beginning in turn; what
// is left free on the other side is filled and looked at when the block is freed. A freed block is
// inaccessible, and is not given out again before many others have been.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kit {

/// Blocks asked for while one of these lives, by any thread, are guarded; they may be freed later.
class GuardedHeap {
  public:
    /// `beginAtEnd` tells on which side the first block lies.
    explicit GuardedHeap(bool beginAtEnd = true);
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;
    ~GuardedHeap();

    /// Guarded blocks that have not been freed.
    static std::int64_t LiveBlocks();
    /// Blocks that were taken so far.
    static std::uint64_t Taken();
    /// Those that were taken after so many and not freed, a line each with what stands at their beginnings.
    static std::string ListSince(std::uint64_t taken);
    /// Blocks that could not be guarded because there was no place left for them.
    static std::uint64_t Unguarded();
    /// Whether a block is guarded.
    static bool Holds(const void* block);

    /// Says in words what stands at an address, "3 bytes past the end of a block of 20 bytes"; an empty text
    /// for an address that has nothing to do with the heap. Allocates nothing.
    static void Describe(const void* address, char* text, std::size_t room);
};

/// Lets blocks lie as the ordinary heap's do for a while, on multiples of 16, for code that puts records of
/// any kind into bytes. Otherwise a block's end is the page's to the byte, and its address a multiple of no
/// more than its size.
class AlignedBlocks {
  public:
    AlignedBlocks();
    AlignedBlocks(const AlignedBlocks&) = delete;
    AlignedBlocks& operator=(const AlignedBlocks&) = delete;
    ~AlignedBlocks();
};

/// Lets blocks come from the ordinary heap for a while; for models and the making of input, which are not
/// what is looked at and would cost as much as what is.
class OrdinaryHeap {
  public:
    OrdinaryHeap();
    OrdinaryHeap(const OrdinaryHeap&) = delete;
    OrdinaryHeap& operator=(const OrdinaryHeap&) = delete;
    ~OrdinaryHeap();

  private:
    bool m_before;
};

} // namespace kit
