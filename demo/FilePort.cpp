// Making and removing ports of the spooler's monitor of local ports.
#include "demo/FilePort.h"

#include <windows.h>
#include <winspool.h>

#include <string>

#include "core/Handles.h"
#include "demo/Made.h"
#include "demo/SpoolerError.h"
#include "demo/Wine.h"

namespace demo {
namespace {

/// Has the monitor do this with the port; gives the system's error number.
DWORD Ask(const wchar_t* what, std::wstring port) {
    std::wstring monitor = L",XcvMonitor Local Port";
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, SERVER_ACCESS_ADMINISTER};
    HANDLE opened = nullptr;
    if (!OpenPrinterW(monitor.data(), &opened, &defaults)) {
        return GetLastError();
    }
    const OCore::UniquePrinter handle(opened);
    DWORD needed = 0;
    DWORD status = ERROR_SUCCESS;
    if (!XcvDataW(handle.get(), what, reinterpret_cast<BYTE*>(port.data()),
                  static_cast<DWORD>((port.size() + 1) * sizeof(wchar_t)), nullptr, 0, &needed, &status)) {
        return GetLastError();
    }
    return status;
}

} // namespace

bool IsFilePort(const std::wstring& port) {
    return port.find(L'\\') != port.npos;
}

void MakeFilePort(const std::wstring& file) {
    if (IsWine()) {
        return;
    }
    RememberMade(kMadePort, file);
    const DWORD status = Ask(L"AddPort", file);
    if (status != ERROR_SUCCESS && status != ERROR_ALREADY_EXISTS) {
        throw SpoolerError("adding a local port", status);
    }
}

bool RemoveFilePort(const std::wstring& file) {
    if (IsWine()) {
        return true;
    }
    const DWORD status = Ask(L"DeletePort", file);
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND || status == ERROR_UNKNOWN_PORT;
}

} // namespace demo
