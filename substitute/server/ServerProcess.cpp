// The process's count of uses, and the wait for its end.
#include "substitute/server/ServerProcess.h"

#include <objbase.h>

#include "substitute/base/Failure.h"

namespace kemba::substitute {

ServerProcess::ServerProcess() : m_left(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
    if (!m_left) {
        throw WindowsFailure(L"making an event failed", GetLastError());
    }
    CoAddRefServerProcess();
}

ServerProcess::~ServerProcess() {
    if (m_counted) {
        CoReleaseServerProcess();
    }
}

void ServerProcess::Enter() noexcept {
    CoAddRefServerProcess();
}

void ServerProcess::Leave() noexcept {
    if (CoReleaseServerProcess() <= 1) { // at most our own count is left
        SetEvent(m_left.get());
    }
}

void ServerProcess::WaitUntilUnused(DWORD start, DWORD grace) {
    DWORD patience = start;
    for (;;) {
        if (WaitForSingleObject(m_left.get(), patience) == WAIT_OBJECT_0) {
            patience = grace; // anew after each last use
            continue;
        }
        m_counted = false;
        if (CoReleaseServerProcess() == 0) {
            return;
        }
        // Still in use. If the last use has ended between the two calls, COM has been told of the end
        // already.
        if (CoAddRefServerProcess() == 1) {
            CoReleaseServerProcess();
            return;
        }
        m_counted = true;
        patience = INFINITE;
    }
}

} // namespace kemba::substitute
