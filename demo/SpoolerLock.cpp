// Mutual exclusion between processes over what all printers share.
#include "demo/SpoolerLock.h"

#include "demo/SpoolerError.h"

namespace demo {

SpoolerLock::SpoolerLock(const wchar_t* name) : m_mutex(CreateMutexW(nullptr, FALSE, name)) {
    if (!m_mutex) {
        throw SpoolerError("CreateMutex", GetLastError());
    }
    // A holder that died leaves the lock abandoned, and to us.
    if (WaitForSingleObject(m_mutex.get(), INFINITE) == WAIT_FAILED) {
        throw SpoolerError("waiting for the spooler lock", GetLastError());
    }
}

SpoolerLock::~SpoolerLock() {
    ReleaseMutex(m_mutex.get());
}

} // namespace demo
