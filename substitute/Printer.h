// One opened printer and what the spooler tells about it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "core/OSynchronizer.h"
#include "substitute/PrinterApi.h"

namespace kemba::substitute {

/// A printer's state at one moment; a text that the printer lacks is empty.
struct PrinterDescription {
    std::wstring shareName; ///< empty when the printer is not shared, whatever name the spooler remembers
    std::wstring portName;  ///< several ports of one pool are separated by commas
    std::wstring modelName; ///< the driver's name
    std::wstring comment;
    std::wstring location;
    DWORD status = 0;     ///< PRINTER_STATUS bits
    DWORD attributes = 0; ///< PRINTER_ATTRIBUTE bits
    DWORD jobs = 0;       ///< jobs in the queue
};

/// An opened printer. Its one spooler handle serves one thread at a time; others wait.
class Printer {
  public:
    /// Opens the printer. Throws Failure: a name that no printer has gives ERROR_INVALID_PRINTER_NAME as
    /// HRESULT.
    Printer(PrinterApi& api, const std::wstring& name);
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    ~Printer();

    /// The name as it was given to the constructor.
    const std::wstring& GetName() const { return m_name; }
    /// Asks the spooler afresh. Throws Failure.
    PrinterDescription Describe() const;

  private:
    std::vector<BYTE> Read(DWORD level) const;

    PrinterApi& m_api;
    const std::wstring m_name;
    mutable OCriticalSection m_lock;
    HANDLE m_handle = nullptr;
};

} // namespace kemba::substitute
