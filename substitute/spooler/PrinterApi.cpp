// The system's spooler behind the seam.
#include "substitute/spooler/PrinterApi.h"

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

DWORD WindowsPrinterApi::Open(const std::wstring& name, DWORD access, HANDLE& handle) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    return ErrorOf(OpenPrinterW(const_cast<wchar_t*>(name.c_str()), &handle, &defaults)); // only read
}

void WindowsPrinterApi::Close(HANDLE handle) {
    ClosePrinter(handle);
}

DWORD WindowsPrinterApi::Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return ErrorOf(GetPrinterW(handle, level, buffer, size, &needed));
}

DWORD WindowsPrinterApi::GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return ErrorOf(GetPrinterDriverW(handle, nullptr, level, buffer, size, &needed));
}

DWORD WindowsPrinterApi::Set(HANDLE handle, DWORD level, BYTE* record, DWORD command) {
    return ErrorOf(SetPrinterW(handle, level, record, command));
}

DWORD WindowsPrinterApi::StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType) {
    DOC_INFO_1W document = {};
    document.pDocName = const_cast<wchar_t*>(name.c_str()); // only read, both
    document.pDatatype = const_cast<wchar_t*>(dataType);
    return ErrorOf(StartDocPrinterW(handle, 1, reinterpret_cast<BYTE*>(&document)) != 0);
}

DWORD WindowsPrinterApi::StartPage(HANDLE handle) {
    return ErrorOf(StartPagePrinter(handle));
}

DWORD WindowsPrinterApi::Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) {
    return ErrorOf(WritePrinter(handle, const_cast<void*>(bytes), size, &written)); // only read
}

DWORD WindowsPrinterApi::EndPage(HANDLE handle) {
    return ErrorOf(EndPagePrinter(handle));
}

DWORD WindowsPrinterApi::EndDocument(HANDLE handle) {
    return ErrorOf(EndDocPrinter(handle));
}

void WindowsPrinterApi::AbortDocument(HANDLE handle) {
    AbortPrinter(handle);
}

} // namespace kemba::substitute
