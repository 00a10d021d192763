// One lock for each printer.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "core/OSynchronizer.h"
#include "substitute/base/Names.h"

namespace kemba::substitute {

/// The locks of all printers that are being worked on, by the printers' names. Whoever reads a printer to
/// change it, or reads what has to fit together, holds its lock meanwhile, so that no change undoes another
/// one; a printer that keeps its caller waiting holds up nobody who works on another. From any thread.
class PrinterLocks {
  public:
    /// The lock of the printer; it goes when nobody has it any more.
    std::shared_ptr<OSynchronizer> Find(const std::wstring& printer);

  private:
    OCriticalSection m_lock; // guards the map
    std::map<std::wstring, std::weak_ptr<OSynchronizer>, LessName> m_locks;
};

/// Holds a printer's lock as long as it lives.
class PrinterHold {
  public:
    PrinterHold(PrinterLocks& locks, const std::wstring& printer)
        : m_lock(locks.Find(printer)), m_hold(*m_lock) {}

  private:
    const std::shared_ptr<OSynchronizer> m_lock;
    const OScopedLock m_hold;
};

} // namespace kemba::substitute
