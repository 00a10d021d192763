// A driver's configuration library that knows nothing but its default device mode.
#include <windows.h>

#include <cwchar>

extern "C" __declspec(dllexport) BOOL WINAPI DrvConvertDevMode(wchar_t* printer, DEVMODEW*, DEVMODEW* mode,
                                                               LONG* needed, DWORD what) {
    constexpr DWORD kDefault = 4; // CDM_DRIVER_DEFAULT
    constexpr WORD kPrivate = 2;
    const LONG size = static_cast<LONG>(sizeof(DEVMODEW) + kPrivate);
    if (what != kDefault || !mode || *needed < size) {
        *needed = size;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    *mode = {};
    std::wcsncpy(mode->dmDeviceName, printer, CCHDEVICENAME - 1);
    mode->dmSize = sizeof(*mode);
    mode->dmDriverExtra = kPrivate;
    mode->dmFields = DM_COPIES;
    mode->dmCopies = 42;
    return TRUE;
}
