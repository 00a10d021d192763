// The dialogs that Windows has for a printer, behind a seam of their own.
#pragma once

#include <windows.h>

#include <string>

namespace kemba::substitute {

/// Each call answers a Win32 error code, ERROR_SUCCESS when it worked.
class PrinterDialogs {
  public:
    virtual ~PrinterDialogs() = default;

    /// Whether somebody could see a dialog of this process: a service or a scheduled task has no desktop that
    /// is shown, and a dialog there would wait forever.
    virtual bool CanBeSeen() = 0;
    /// Shows the printer's properties until the user closes them.
    virtual DWORD ShowProperties(const std::wstring& printer) = 0;
    /// Opens the window of the printer's queue.
    virtual DWORD ShowQueue(const std::wstring& printer) = 0;
};

/// The system's own dialogs.
class WindowsPrinterDialogs : public PrinterDialogs {
  public:
    bool CanBeSeen() override;
    DWORD ShowProperties(const std::wstring& printer) override;
    DWORD ShowQueue(const std::wstring& printer) override;
};

} // namespace kemba::substitute
