// Finding a printer's lock.
#include "substitute/spooler/PrinterLocks.h"

#include <memory>
#include <string>
#include <vector>

#include "core/OSynchronizer.h"

namespace kemba::substitute {

std::shared_ptr<OSynchronizer> PrinterLocks::Find(const std::wstring& printer) {
    const OScopedLock hold(m_lock);
    std::erase_if(m_locks, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<OSynchronizer>& place = m_locks[printer];
    std::shared_ptr<OSynchronizer> lock = place.lock();
    if (!lock) {
        lock = std::make_shared<OCriticalSection>();
        place = lock;
    }
    return lock;
}

} // namespace kemba::substitute
