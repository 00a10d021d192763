// Mutual exclusion between processes over what all printers share.
#include "demo/SpoolerLock.h"

#include "demo/SpoolerError.h"

namespace demo {

SpoolerLock::SpoolerLock(const wchar_t* name) : m_mutex(CreateMutexW(nullptr, FALSE, name)) {
    if (!m_mutex) {
        throw SpoolerError("CreateMutex", GetLastError());
    }
    // A holder that died leaves the lock abandoned, and to us.
    if (WaitForSingleObject(m_mutex, INFINITE) == WAIT_FAILED) {
        const DWORD error = GetLastError();
        CloseHandle(m_mutex);
        throw SpoolerError("waiting for the spooler lock", error);
    }
}

SpoolerLock::~SpoolerLock() {
    ReleaseMutex(m_mutex);
    CloseHandle(m_mutex);
}

} // namespace demo
