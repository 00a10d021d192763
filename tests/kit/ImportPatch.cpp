// Walk over the import tables: the ordinary one, and that of the libraries which the first call loads.
#include "tests/kit/ImportPatch.h"

#include <string_view>

namespace kit {
namespace {

/// A module's bytes, found by their distance from its beginning.
class Image {
  public:
    explicit Image(HMODULE module) : m_base(reinterpret_cast<char*>(module)) {}

    template<class Part>
    Part* At(ULONG_PTR distance) const {
        return reinterpret_cast<Part*>(m_base + distance);
    }
    /// The directory's first entry.
    template<class Entry>
    const Entry* Directory(int number) const {
        const auto* const start = At<const IMAGE_DOS_HEADER>(0);
        const auto* const headers = At<const IMAGE_NT_HEADERS>(static_cast<ULONG_PTR>(start->e_lfanew));
        const DWORD distance = headers->OptionalHeader.DataDirectory[number].VirtualAddress;
        return distance == 0 ? nullptr : At<const Entry>(distance);
    }
    /// The place of the call's address, in two tables side by side; null when the call is not among them.
    void** PlaceOf(std::string_view call, DWORD names, DWORD addresses) const {
        const auto* named = At<const IMAGE_THUNK_DATA>(names);
        for (auto* place = At<void*>(addresses); named->u1.AddressOfData != 0; ++named, ++place) {
            if (!IMAGE_SNAP_BY_ORDINAL(named->u1.Ordinal) &&
                call == At<const IMAGE_IMPORT_BY_NAME>(named->u1.AddressOfData)->Name) {
                return place;
            }
        }
        return nullptr;
    }

  private:
    char* m_base;
};

bool Put(void** place, void* replacement) {
    DWORD protection = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection)) {
        return false;
    }
    *place = replacement;
    VirtualProtect(place, sizeof *place, protection, &protection);
    return true;
}

} // namespace

void* PatchImport(HMODULE module, std::string_view name, void* replacement) {
    const Image image(module);
    for (const auto* library = image.Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         library && library->Name != 0; ++library) {
        if (void** const place = image.PlaceOf(name, library->OriginalFirstThunk, library->FirstThunk)) {
            void* const before = *place;
            return Put(place, replacement) ? before : nullptr;
        }
    }
    for (const auto* library =
             image.Directory<IMAGE_DELAYLOAD_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
         library && library->DllNameRVA != 0; ++library) {
        if (void** const place =
                image.PlaceOf(name, library->ImportNameTableRVA, library->ImportAddressTableRVA)) {
            // What stands there loads the library and puts the call's address there itself.
            const HMODULE loaded = LoadLibraryA(image.At<const char>(library->DllNameRVA));
            void* const real =
                loaded ? reinterpret_cast<void*>(GetProcAddress(loaded, name.data())) : nullptr;
            return real && Put(place, replacement) ? real : nullptr;
        }
    }
    return nullptr;
}

} // namespace kit
