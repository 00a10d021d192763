// A heap that only grows.
#include "tests/shortage/Arena.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/kit/ImportPatch.h"

namespace kit {
namespace {

constexpr std::size_t kBytes = std::size_t{64} << 20;
constexpr int kNew = 0xCD;
constexpr int kFreed = 0xDD;
constexpr UINT kExhausted = 98;

/// Stands before each block, whose alignment it keeps.
struct alignas(16) Header {
    std::size_t size;
};

char* g_start = nullptr;
std::size_t g_used = 0;
void (*g_realFree)(void*) = nullptr;
void* (*g_realRealloc)(void*, std::size_t) = nullptr;

bool IsOurs(const void* block) {
    return block >= g_start && block < g_start + kBytes;
}

Header* HeaderOf(void* block) {
    return static_cast<Header*>(block) - 1;
}

void* Allocate(std::size_t size) {
    const std::size_t whole = sizeof(Header) + (size + 15) / 16 * 16;
    if (whole > kBytes - g_used) {
        TerminateProcess(GetCurrentProcess(), kExhausted);
    }
    auto* const header = reinterpret_cast<Header*>(g_start + g_used);
    g_used += whole;
    header->size = size;
    return std::memset(header + 1, kNew, size);
}

void* AllocateZeroed(std::size_t count, std::size_t size) {
    return std::memset(Allocate(count * size), 0, count * size);
}

void Free(void* block) {
    if (!block || !IsOurs(block)) {
        g_realFree(block);
    } else {
        std::memset(block, kFreed, HeaderOf(block)->size);
    }
}

void* Reallocate(void* block, std::size_t size) {
    if (block && !IsOurs(block)) {
        return g_realRealloc(block, size);
    }
    void* const grown = size > 0 ? Allocate(size) : nullptr;
    if (block && grown) {
        std::memcpy(grown, block, std::min(size, HeaderOf(block)->size));
    }
    Free(block);
    return grown;
}

char* Duplicate(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(Allocate(size), text, size));
}

template<class Call>
Call Replace(HMODULE module, const char* name, Call replacement) {
    return reinterpret_cast<Call>(PatchImport(module, name, reinterpret_cast<void*>(replacement)));
}

} // namespace

void UseArena(HMODULE module) {
    g_start = static_cast<char*>(VirtualAlloc(nullptr, kBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (!g_start) {
        TerminateProcess(GetCurrentProcess(), kExhausted);
    }
    Replace(module, "malloc", &Allocate);
    Replace(module, "calloc", &AllocateZeroed);
    Replace(module, "_strdup", &Duplicate);
    g_realRealloc = Replace(module, "realloc", &Reallocate);
    g_realFree = Replace(module, "free", &Free);
}

std::size_t ArenaSize() {
    return g_used;
}

char* ArenaStart() {
    return g_start;
}

void ShrinkArena(std::size_t size) {
    g_used = size;
}

} // namespace kit
