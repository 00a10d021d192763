// Calls that fill a buffer whose size is not known before.
#pragma once

#include <windows.h>

#include <winspool.h>

#include "substitute/settings/Settings.h"

namespace kemba::substitute {

/// The error of a call that has just given `succeeded`; a failure is never taken for success.
inline DWORD SettingsErrorOf(BOOL succeeded) {
    if (succeeded) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

/// Makes `call(buffer, size, needed)`, which gives an error code, with larger buffers until one is large
/// enough: what is asked for may have grown since its size was told.
template<class Call>
DWORD FillBuffer(Bytes& buffer, Call&& call) {
    for (;;) {
        DWORD needed = 0;
        const auto size = static_cast<DWORD>(buffer.size());
        const DWORD error = call(buffer.data(), size, needed);
        const bool tooSmall = error == ERROR_INSUFFICIENT_BUFFER || error == ERROR_MORE_DATA;
        if (!tooSmall || needed <= size) { // a size that does not grow would go on for ever
            return error;
        }
        buffer.resize(needed);
    }
}

/// PRINTER_INFO record of a level.
inline DWORD ReadPrinterRecord(HANDLE handle, DWORD level, Bytes& record) {
    return FillBuffer(record, [&](BYTE* buffer, DWORD size, DWORD& needed) {
        return SettingsErrorOf(GetPrinterW(handle, level, buffer, size, &needed));
    });
}

/// DRIVER_INFO record of a level.
inline DWORD ReadDriverRecord(HANDLE handle, DWORD level, Bytes& record) {
    return FillBuffer(record, [&](BYTE* buffer, DWORD size, DWORD& needed) {
        return SettingsErrorOf(GetPrinterDriverW(handle, nullptr, level, buffer, size, &needed));
    });
}

} // namespace kemba::substitute
