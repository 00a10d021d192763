// The one seam to the print spooler: the few calls that the server makes, so that a test can answer them.
#pragma once

#include <windows.h>

#include <string>

#include "substitute/SettingsApi.h"

namespace kemba::substitute {

/// Spooler calls by their plain meaning; each answers a Win32 error code, ERROR_SUCCESS when it worked.
/// A handle belongs to the caller and is used by one thread at a time.
class PrinterApi {
  public:
    virtual ~PrinterApi() = default;

    /// Opens a printer with the right to use it.
    virtual DWORD Open(const std::wstring& name, HANDLE& handle) = 0;
    virtual void Close(HANDLE handle) = 0;
    /// Fills `buffer` with the PRINTER_INFO record of a level. ERROR_INSUFFICIENT_BUFFER: `needed` bytes are
    /// wanted.
    virtual DWORD Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) = 0;

    /// The calls that settings need; outlived by this object.
    virtual SettingsApi& GetSettingsApi() = 0;
};

/// The system's own spooler.
class WindowsPrinterApi : public PrinterApi {
  public:
    DWORD Open(const std::wstring& name, HANDLE& handle) override;
    void Close(HANDLE handle) override;
    DWORD Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override;

    SettingsApi& GetSettingsApi() override { return m_settings; }

  private:
    WindowsSettingsApi m_settings;
};

} // namespace kemba::substitute
