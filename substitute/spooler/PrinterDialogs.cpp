// The system's dialogs for a printer.
#include "substitute/spooler/PrinterDialogs.h"

#include <objbase.h>
#include <winspool.h>

#include <iterator>
#include <thread>

namespace kemba::substitute {
namespace {

DWORD LastError() {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

DWORD OpenProperties(const std::wstring& printer) {
    HANDLE handle = nullptr;
    // A user who may only look at the properties is shown them all the same.
    if (!OpenPrinterW(const_cast<wchar_t*>(printer.c_str()), &handle, nullptr)) {
        return LastError();
    }
    const DWORD error = PrinterProperties(nullptr, handle) ? ERROR_SUCCESS : LastError();
    ClosePrinter(handle);
    return error;
}

} // namespace

bool WindowsPrinterDialogs::CanBeSeen() {
    USEROBJECTFLAGS flags = {};
    return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof(flags), nullptr) &&
           (flags.dwFlags & WSF_VISIBLE);
}

DWORD WindowsPrinterDialogs::ShowProperties(const std::wstring& printer) {
    // Drivers' pages expect a single-threaded apartment, which none of the server's own threads has.
    DWORD error = ERROR_SUCCESS;
    std::thread([&] {
        const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        error = OpenProperties(printer);
        if (SUCCEEDED(apartment)) {
            CoUninitialize();
        }
    }).join();
    return error;
}

DWORD WindowsPrinterDialogs::ShowQueue(const std::wstring& printer) {
    if (printer.find(L'"') != std::wstring::npos) {
        return ERROR_INVALID_PRINTER_NAME; // it would end the quotes below
    }
    wchar_t folder[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(folder, static_cast<UINT>(std::size(folder)));
    if (length == 0 || length >= std::size(folder)) {
        return LastError();
    }
    const std::wstring program = std::wstring(folder) + L"\\rundll32.exe";
    std::wstring line = L"\"" + program + L"\" printui.dll,PrintUIEntry /o /n\"" + printer + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &started)) {
        return LastError();
    }
    // The window has a process of its own; one that ends at once with a failure has shown none.
    constexpr DWORD kPatience = 1'000; // milliseconds
    DWORD status = 0;
    const bool failed = WaitForSingleObject(started.hProcess, kPatience) == WAIT_OBJECT_0 &&
                        GetExitCodeProcess(started.hProcess, &status) && status != 0;
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return failed ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_SUCCESS;
}

} // namespace kemba::substitute
