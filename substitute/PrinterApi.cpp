// The system's spooler behind the seam.
#include "substitute/PrinterApi.h"

#include <winspool.h>

namespace kemba::substitute {
namespace {

/// The error of a call that has just given `succeeded`; a failure is never taken for success.
DWORD ErrorOf(BOOL succeeded) {
    if (succeeded) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

} // namespace

DWORD WindowsPrinterApi::Open(const std::wstring& name, HANDLE& handle) {
    // The name is only read; without defaults the handle has the right to use the printer, which everybody
    // has.
    return ErrorOf(OpenPrinterW(const_cast<wchar_t*>(name.c_str()), &handle, nullptr));
}

void WindowsPrinterApi::Close(HANDLE handle) {
    ClosePrinter(handle);
}

DWORD WindowsPrinterApi::Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return ErrorOf(GetPrinterW(handle, level, buffer, size, &needed));
}

} // namespace kemba::substitute
