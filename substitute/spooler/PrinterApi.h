// The one seam to the print spooler: the few calls that the server makes, so that a test can answer them.
#pragma once

#include <windows.h>

#include <string>

#include "substitute/spooler/SettingsApi.h"

namespace kemba::substitute {

/// Spooler calls by their plain meaning; each answers a Win32 error code, ERROR_SUCCESS when it worked.
/// A handle belongs to the caller and is used by one thread at a time.
class PrinterApi {
  public:
    virtual ~PrinterApi() = default;

    /// Opens a printer with the rights named by PRINTER_ACCESS bits.
    virtual DWORD Open(const std::wstring& name, DWORD access, HANDLE& handle) = 0;
    virtual void Close(HANDLE handle) = 0;
    /// Fills `buffer` with the PRINTER_INFO record of a level. ERROR_INSUFFICIENT_BUFFER: `needed` bytes are
    /// wanted.
    virtual DWORD Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) = 0;
    /// The same for the DRIVER_INFO record of the printer's driver.
    virtual DWORD GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) = 0;
    /// Writes a PRINTER_INFO record, or at level 0 (no record) carries out a PRINTER_CONTROL command.
    virtual DWORD Set(HANDLE handle, DWORD level, BYTE* record, DWORD command) = 0;

    /// A job of the given data type; its one page takes all bytes.
    virtual DWORD StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType) = 0;
    virtual DWORD StartPage(HANDLE handle) = 0;
    /// May take fewer bytes than it was given; `written` tells.
    virtual DWORD Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) = 0;
    virtual DWORD EndPage(HANDLE handle) = 0;
    virtual DWORD EndDocument(HANDLE handle) = 0;
    /// Deletes the job that has been started.
    virtual void AbortDocument(HANDLE handle) = 0;

    /// The calls that settings need; outlived by this object.
    virtual SettingsApi& GetSettingsApi() = 0;
};

/// The system's own spooler.
class WindowsPrinterApi : public PrinterApi {
  public:
    DWORD Open(const std::wstring& name, DWORD access, HANDLE& handle) override;
    void Close(HANDLE handle) override;
    DWORD Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override;
    DWORD GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override;
    DWORD Set(HANDLE handle, DWORD level, BYTE* record, DWORD command) override;
    DWORD StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType) override;
    DWORD StartPage(HANDLE handle) override;
    DWORD Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) override;
    DWORD EndPage(HANDLE handle) override;
    DWORD EndDocument(HANDLE handle) override;
    void AbortDocument(HANDLE handle) override;

    SettingsApi& GetSettingsApi() override { return m_settings; }

  private:
    WindowsSettingsApi m_settings;
};

} // namespace kemba::substitute
