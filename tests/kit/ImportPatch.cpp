// Walk over the import table.
#include "tests/kit/ImportPatch.h"

#include <string_view>

namespace kit {

void* PatchImport(HMODULE module, std::string_view name, void* replacement) {
    auto* const base = reinterpret_cast<char*>(module);
    const auto* const start = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + start->e_lfanew);
    const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto* named = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* bound = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; named->u1.AddressOfData != 0; ++named, ++bound) {
            if (IMAGE_SNAP_BY_ORDINAL(named->u1.Ordinal)) {
                continue;
            }
            const auto* const entry =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + named->u1.AddressOfData);
            if (name != reinterpret_cast<const char*>(entry->Name)) {
                continue;
            }
            void* const before = *bound;
            DWORD protection = 0;
            if (!VirtualProtect(bound, sizeof *bound, PAGE_READWRITE, &protection)) {
                return nullptr;
            }
            *bound = replacement;
            VirtualProtect(bound, sizeof *bound, protection, &protection);
            return before;
        }
    }
    return nullptr;
}

} // namespace kit
