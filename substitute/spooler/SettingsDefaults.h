// Two ways to a driver's default device mode.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "substitute/spooler/SettingsApi.h"

namespace kemba::substitute {

/// Asks a driver's configuration library through its DrvConvertDevMode, as the system does for a new printer.
/// Gives a Win32 error code: ERROR_CALL_NOT_IMPLEMENTED when the library does not export that function.
DWORD AskLibraryForDefaultMode(const std::wstring& library, const std::wstring& printer,
                               std::optional<Bytes>& mode);

/// The same with the library of an opened printer's driver.
DWORD AskDriverForDefaultMode(HANDLE handle, const std::wstring& printer, std::optional<Bytes>& mode);

/// Makes a hidden printer with the same driver, reads the device mode that the spooler gives it, and deletes
/// it again. Gives a Win32 error code; needs the right to add printers.
DWORD AskFreshPrinterForMode(SettingsApi& api, HANDLE handle, std::optional<Bytes>& mode);

} // namespace kemba::substitute
