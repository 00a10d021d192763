// Printers on the spooler: on Wine's own, and, made by an administrator, on that of Windows.
//
//     const demo::Printer printer({.comment = L"by the door", .shareName = L"dock"});
//     ... use printer.Name(); it is gone at the end of the scope ...
//
// Wine's spooler is not made for several processes at once: while one makes or removes a printer, lists that
// others ask for fail, and jobs of two processes get in each other's way. Whoever has a Printer or a
// DefaultPrinter therefore holds the SpoolerLock, and has the list of printers, the default printer and the
// queues to itself.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "demo/SpoolerLock.h"

namespace demo {

/// What a new printer is; all texts may be empty.
struct PrinterSettings {
    std::wstring port = L"LPT1:";
    std::wstring comment{};
    std::wstring location{};
    std::wstring shareName{}; ///< a printer with one is shared
    DWORD attributes = 0;     ///< further attributes, PRINTER_ATTRIBUTE_...
};

/// Makes a printer that stays until it is deleted or Wine's server ends, and installs its driver if need be;
/// on Windows also its port, if that is a file's path. Throws SpoolerError when there is a printer of that
/// name, or the spooler refuses.
void MakePrinter(const std::wstring& name, const PrinterSettings& settings);

/// Deletes the printer with its jobs, and its port if that is a file; does nothing when there is none of that
/// name.
void RemovePrinter(const std::wstring& name);

/// Whether there is a printer of that name, which is compared as the spooler does it: ignoring case.
bool PrinterExists(const std::wstring& name);

/// The names of all printers in the spooler's order.
std::vector<std::wstring> PrinterNames();

/// A name that no other printer has.
std::wstring UniquePrinterName();

/// Makes a printer and deletes it in the end; holds the SpoolerLock meanwhile.
class Printer {
  public:
    Printer(std::wstring name, const PrinterSettings& settings);
    /// With a unique name.
    explicit Printer(const PrinterSettings& settings = {}) : Printer(UniquePrinterName(), settings) {}
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    ~Printer() { RemovePrinter(m_name); }

    const std::wstring& Name() const { return m_name; }

  private:
    SpoolerLock m_lock;
    std::wstring m_name;
};

/// The default printer; none when there is none.
std::optional<std::wstring> GetDefaultPrinterName();

/// Sets the default printer, or none. Throws SpoolerError when the printer is not there.
void SetDefaultPrinterName(const std::optional<std::wstring>& name);

/// Sets the default printer, or none; puts the former one back in the end; holds the SpoolerLock meanwhile.
class DefaultPrinter {
  public:
    /// Throws SpoolerError when the printer is not there.
    explicit DefaultPrinter(const std::optional<std::wstring>& name);
    DefaultPrinter(const DefaultPrinter&) = delete;
    DefaultPrinter& operator=(const DefaultPrinter&) = delete;
    ~DefaultPrinter();

  private:
    SpoolerLock m_lock;
    std::optional<std::wstring> m_former;
};

} // namespace demo
