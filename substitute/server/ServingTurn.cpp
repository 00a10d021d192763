// A mutex of the session, which the system takes back when its owner dies.
#include "substitute/server/ServingTurn.h"

#include <DriverAutomation.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/server/ProcessSecurity.h"

namespace kemba::substitute {

LUID OwnLogon() {
    const std::vector<BYTE> token = ReadOwnToken(TokenStatistics);
    return reinterpret_cast<const TOKEN_STATISTICS*>(token.data())->AuthenticationId;
}

std::wstring ServingTurnName(const LUID& logon) {
    return L"Local\\" + Braced(__uuidof(DriverAutomation)) + (logon.HighPart < 0 ? L" -" : L" ") +
           NumberText(static_cast<std::uint64_t>(std::abs(std::int64_t{logon.HighPart}))) + L" " +
           NumberText(logon.LowPart);
}

ServingTurn::ServingTurn(const std::wstring& name) : m_mutex(CreateMutexW(nullptr, FALSE, name.c_str())) {
    if (!m_mutex) {
        throw WindowsFailure(L"making the servers' mutex \"" + name + L"\" failed", GetLastError());
    }
}

bool ServingTurn::Take(std::chrono::milliseconds patience) {
    if (m_taken) {
        return true;
    }
    switch (WaitForSingleObject(m_mutex.get(), static_cast<DWORD>(patience.count()))) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: // its owner was killed
        m_taken = true;
        return true;
    case WAIT_TIMEOUT: return false;
    default: throw WindowsFailure(L"waiting for another server failed", GetLastError());
    }
}

void ServingTurn::GiveUp() noexcept {
    if (m_taken) {
        ReleaseMutex(m_mutex.get());
        m_taken = false;
    }
}

} // namespace kemba::substitute
