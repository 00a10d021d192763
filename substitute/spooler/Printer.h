// One printer: what the spooler tells about it, and what an administrator may change.
#pragma once

#include <windows.h>

#include <string>

#include "core/OSynchronizer.h"
#include "substitute/spooler/PrinterHandle.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"

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
    std::wstring name{};
    DWORDLONG version = 0; ///< four parts of 16 bits, the first one highest
    FILETIME date = {};    ///< UTC
    std::wstring provider{};
    std::wstring path{};          ///< of the driver's program file
    std::wstring configuration{}; ///< path of its configuration library
    DWORD attributes = 0;         ///< PRINTER_DRIVER bits
};

/// The driver of an opened printer. Throws Failure.
DriverDescription DescribeDriver(const PrinterHandle& handle);

/// A printer for good: whatever it is called later, questions and changes reach the very printer that the
/// name stood for at first, or fail. Its spooler handle for questions serves one thread at a time; others
/// wait. Everything else is done with a handle of its own, opened with the rights that it needs, so that the
/// spooler can refuse it.
class Printer {
  public:
    /// Opens the printer. Throws Failure: a name that no printer has gives ERROR_INVALID_PRINTER_NAME as
    /// HRESULT, and so does one that the spooler knows for something else: a print server, a monitor, a port,
    /// a job.
    Printer(Spooler& spooler, PrinterLocks& locks, const std::wstring& name);

    /// The name as it was given to the constructor.
    const std::wstring& Name() const { return m_name; }

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

    /// Whether somebody could see a dialog of this process.
    bool CanShowDialogs() const;
    /// Show the printer's properties, which only its administrators can change there, until the user closes
    /// them, and the window of its queue. Throw Failure; `what` names the dialog for its reason.
    void ShowProperties(const std::wstring& what) const;
    void ShowQueue(const std::wstring& what) const;

    /// A handle of its own for the same printer. `access`: PRINTER_ACCESS bits. Throws Failure.
    PrinterHandle Open(DWORD access) const;
    /// Keeps all others from changing the printer while it lives. Throws Failure.
    PrinterHold Hold() const;

  private:
    template<class Change>
    void ChangeRecord(const std::wstring& what, Change&& change) const;
    PrinterHandle OpenAsFarAsAllowed() const;
    std::wstring PresentName() const;

    const std::wstring m_name;
    PrinterLocks& m_locks;
    mutable OCriticalSection m_lock; // guards the handle
    const PrinterHandle m_handle;
};

/// Whether a dialog of a process on that desktop can be seen: a service, a scheduled task and a session that
/// nobody is connected to show none, and a dialog there would wait for ever.
bool CanShowDialogs(const Desktop& desktop);

} // namespace kemba::substitute
