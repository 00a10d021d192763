// A library that is to be mistaken for one of the system's: it leaves a mark beside itself when it is loaded,
// and knows of no file's version and no printer.
#include <windows.h>
#include <winver.h>

#include "core/Handles.h"

using OCore::UniqueHandle;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        constexpr wchar_t kMark[] = L".loaded";
        wchar_t path[MAX_PATH + ARRAYSIZE(kMark)];
        lstrcpyW(path + GetModuleFileNameW(library, path, MAX_PATH), kMark);
        const UniqueHandle mark(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    return TRUE;
}

DWORD WINAPI GetFileVersionInfoSizeW(const wchar_t*, DWORD*) {
    return 0;
}

BOOL WINAPI GetFileVersionInfoW(const wchar_t*, DWORD, DWORD, void*) {
    return FALSE;
}

BOOL WINAPI VerQueryValueW(const void*, const wchar_t*, void**, UINT*) {
    return FALSE;
}

BOOL WINAPI EnumPrintersW(DWORD, wchar_t*, DWORD, BYTE*, DWORD, DWORD*, DWORD*) {
    return FALSE;
}
}
