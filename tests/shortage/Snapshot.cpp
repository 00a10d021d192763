// Copies of sections, arena and slots.
#include "tests/shortage/Snapshot.h"

#include <cstring>
#include <vector>

#include "tests/kit/ImportPatch.h"
#include "tests/shortage/Arena.h"

namespace kit {
namespace {

std::vector<DWORD> g_slots; // taken by the program and not freed

DWORD WINAPI TakeSlot() {
    const DWORD slot = TlsAlloc();
    if (slot != TLS_OUT_OF_INDEXES) {
        g_slots.push_back(slot);
    }
    return slot;
}

} // namespace

void Snapshot::WatchSlots(HMODULE module) {
    PatchImport(module, "TlsAlloc", reinterpret_cast<void*>(&TakeSlot));
}

Snapshot::Snapshot(HMODULE module) {
    auto* const base = reinterpret_cast<char*>(module);
    const auto* const start = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + start->e_lfanew);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
    for (int left = headers->FileHeader.NumberOfSections; left > 0; --left, ++section) {
        char* const first = base + section->VirtualAddress;
        if ((section->Characteristics & IMAGE_SCN_MEM_WRITE) != 0) {
            m_parts.push_back({first, {first, first + section->Misc.VirtualSize}});
        }
    }
    m_parts.push_back({ArenaStart(), {ArenaStart(), ArenaStart() + ArenaSize()}});
    for (const DWORD slot : g_slots) {
        m_slots.push_back(TlsGetValue(slot));
    }
}

void Snapshot::Restore() const {
    for (const Part& part : m_parts) {
        std::memcpy(part.start, part.bytes.data(), part.bytes.size());
    }
    ShrinkArena(m_parts.back().bytes.size());
    for (; g_slots.size() > m_slots.size(); g_slots.pop_back()) {
        TlsFree(g_slots.back());
    }
    for (std::size_t index = 0; index < m_slots.size(); ++index) {
        TlsSetValue(g_slots[index], m_slots[index]);
    }
}

} // namespace kit
