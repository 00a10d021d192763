// An open spooler handle.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

/// Whose device mode: the values are the spooler's information levels.
enum class ModeLevel : DWORD { Global = 8, User = 9 };

/// Opened for one purpose; one thread at a time uses it.
class PrinterHandle {
  public:
    /// `access`: PRINTER_ACCESS bits. Throws Failure: a name that no printer has gives
    /// ERROR_INVALID_PRINTER_NAME as HRESULT.
    PrinterHandle(Spooler& spooler, std::wstring name, DWORD access);
    PrinterHandle(PrinterHandle&& other) noexcept
        : m_spooler(other.m_spooler), m_name(std::move(other.m_name)),
          m_handle(std::exchange(other.m_handle, nullptr)) {}
    PrinterHandle& operator=(PrinterHandle&&) = delete;
    ~PrinterHandle();

    Spooler& GetSpooler() const { return m_spooler; }
    HANDLE Get() const { return m_handle; }
    /// The name by which it was opened.
    const std::wstring& Name() const { return m_name; }

    /// The printer's record of a level. Throws Failure.
    Bytes Read(DWORD level) const;
    /// The name that the printer has at this moment. Throws Failure.
    std::wstring ReadName() const;
    /// Its driver's record of the first of two levels, or where the system does not know that one, of the
    /// second; with the level. Throws Failure.
    std::pair<DWORD, Bytes> ReadDriver(DWORD level, DWORD olderLevel) const;

    /// The device mode of a level; nothing when the printer has none. Throws Failure.
    std::optional<Bytes> ReadMode(ModeLevel level) const;
    /// Sets the device mode of a level, or takes it away; gives a Win32 error code.
    DWORD SetMode(ModeLevel level, const std::optional<Bytes>& mode) const;

  private:
    Spooler& m_spooler;
    std::wstring m_name;
    HANDLE m_handle = nullptr;
};

} // namespace kemba::substitute
