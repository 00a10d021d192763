// Loading by full path, and the hook that the delayed imports go through.
#include "core/SystemLibraries.h"

#include <delayimp.h>

#include <algorithm>

#include "core/Compiler.h"

namespace OCore {
namespace {

/// Called around each delayed import. The library is asked for here so that its name never reaches the
/// search, which begins beside the program on systems that TakeLibrariesFromTheSystemOnly can do nothing for.
FARPROC WINAPI OnDelayedImport(unsigned event, DelayLoadInfo* import) {
    if (event != dliNotePreLoadLibrary) {
        return nullptr;
    }
    const HMODULE library = LoadSystemLibrary(import->szDll);
    if (!library) {
        RaiseException(VcppException(ERROR_SEVERITY_ERROR, ERROR_MOD_NOT_FOUND), EXCEPTION_NONCONTINUABLE, 0,
                       nullptr);
    }
    return reinterpret_cast<FARPROC>(library);
}

} // namespace

void TakeLibrariesFromTheSystemOnly() {
    constexpr DWORD kSystemFolder = 0x800; // LOAD_LIBRARY_SEARCH_SYSTEM32
    constexpr DWORD kAddedFolders = 0x400; // LOAD_LIBRARY_SEARCH_USER_DIRS
    using Call = BOOL(WINAPI*)(DWORD);
    auto* const address = reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories"));
    if (const auto setDefaultDllDirectories = reinterpret_cast<Call>(address)) {
        setDefaultDllDirectories(kSystemFolder | kAddedFolders);
    }
}

HMODULE LoadSystemLibrary(std::string_view name) {
    wchar_t path[MAX_PATH];
    const UINT folder = GetSystemDirectoryW(path, MAX_PATH);
    if (folder == 0) {
        return nullptr;
    }
    if (folder + name.size() + 2 > MAX_PATH) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return nullptr;
    }
    path[folder] = L'\\';
    *std::copy(name.begin(), name.end(), path + folder + 1) = L'\0';
    return LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

} // namespace OCore

KEMBA_DELAY_HOOK PfnDliHook __pfnDliNotifyHook2 = OCore::OnDelayedImport;
