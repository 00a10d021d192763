// One server at a time.
#pragma once

#include <windows.h>

#include <chrono>
#include <string>

#include "core/Handles.h"

namespace kemba::substitute {

/// The logon session of this process: a user has one, and another one elevated. Throws Failure.
LUID OwnLogon();

/// The name of the turn of all servers of the same classes that clients of the logon session may find.
std::wstring ServingTurnName(const LUID& logon);

/// The right to offer the classes, which one process has at a time. Two clients that come at once may make
/// COM start two programs; served by both, the objects of one client would not know each other. Taken and
/// given up on one thread.
class ServingTurn {
  public:
    /// Throws Failure.
    explicit ServingTurn(const std::wstring& name);
    ServingTurn(const ServingTurn&) = delete;
    ServingTurn& operator=(const ServingTurn&) = delete;
    ~ServingTurn() { GiveUp(); }

    /// Waits until no other process has it, but not longer than `patience`; tells whether it is this one's
    /// now. Throws Failure.
    [[nodiscard]] bool Take(std::chrono::milliseconds patience);
    void GiveUp() noexcept;

  private:
    const OCore::UniqueHandle m_mutex;
    bool m_taken = false;
};

} // namespace kemba::substitute
