// One opened printer: what the spooler tells about it, and what an administrator may change.
#pragma once

#include <windows.h>

#include <string>

#include "core/OSynchronizer.h"
#include "substitute/spooler/PrinterApi.h"
#include "substitute/spooler/PrinterHandle.h"

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

/// What a printer's driver says of itself; what it does not say is 0 or empty.
struct DriverDescription {
    DWORDLONG version = 0; ///< four parts of 16 bits, the first one highest
    FILETIME date = {};    ///< UTC
    std::wstring provider;
    std::wstring path; ///< of the driver's program file
};

/// An opened printer. Its spooler handle for questions serves one thread at a time; others wait. A change
/// opens a handle of its own, for administration, and gives the spooler the right to refuse it.
class Printer {
  public:
    /// Opens the printer. Throws Failure: a name that no printer has gives ERROR_INVALID_PRINTER_NAME as
    /// HRESULT.
    Printer(PrinterApi& api, const std::wstring& name);

    PrinterApi& Api() const { return m_handle.Api(); }
    /// The name as it was given to the constructor.
    const std::wstring& GetName() const { return m_name; }

    /// Ask the spooler afresh. Throw Failure.
    PrinterDescription Describe() const;
    DriverDescription DescribeDriver() const;

    /// Change one thing and leave all others as they are. Throw Failure.
    void ChangeComment(const std::wstring& comment) const;
    void ChangeLocation(const std::wstring& location) const;
    /// Shares the printer under that name, or with an empty one ends sharing.
    void ChangeShareName(const std::wstring& name) const;
    /// Carries out a PRINTER_CONTROL command on the queue; `what` names it for the reason of a refusal.
    /// Throws Failure.
    void Control(DWORD command, const wchar_t* what) const;

  private:
    template<class Change>
    void ChangeRecord(const std::wstring& what, Change&& change) const;

    const std::wstring m_name;
    mutable OCriticalSection m_lock;
    const PrinterHandle m_handle;
};

} // namespace kemba::substitute
