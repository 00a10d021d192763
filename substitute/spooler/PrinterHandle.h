// An open spooler handle.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "substitute/spooler/PrinterApi.h"

namespace kemba::substitute {

/// Opened for one purpose; one thread at a time uses it.
class PrinterHandle {
  public:
    /// `access`: PRINTER_ACCESS bits. Throws Failure: a name that no printer has gives
    /// ERROR_INVALID_PRINTER_NAME as HRESULT.
    PrinterHandle(PrinterApi& api, const std::wstring& name, DWORD access);
    PrinterHandle(const PrinterHandle&) = delete;
    PrinterHandle& operator=(const PrinterHandle&) = delete;
    ~PrinterHandle();

    PrinterApi& Api() const { return m_api; }
    HANDLE Get() const { return m_handle; }

    /// The printer's record of a level. Throws Failure.
    std::vector<BYTE> Read(DWORD level) const;
    /// Its driver's record of the first of two levels, or where the system does not know that one, of the
    /// second; with the level. Throws Failure.
    std::pair<DWORD, std::vector<BYTE>> ReadDriver(DWORD level, DWORD olderLevel) const;

  private:
    using Question = DWORD (PrinterApi::*)(HANDLE, DWORD, BYTE*, DWORD, DWORD&);

    DWORD Ask(Question question, DWORD level, std::vector<BYTE>& record) const;

    PrinterApi& m_api;
    HANDLE m_handle = nullptr;
};

} // namespace kemba::substitute
