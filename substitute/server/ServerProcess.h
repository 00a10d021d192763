// How long the server's process lives.
#pragma once

#include <windows.h>

#include "substitute/base/Handles.h"

namespace kemba::substitute {

/// Counts what keeps the process alive: objects and locks, all in COM's own count for the process, so that
/// new activations are shut out at the very moment at which it reaches zero. The object itself holds one
/// count: after the last client has gone the process stays open for the next one for a while.
class ServerProcess {
  public:
    /// Throws Failure.
    ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess();

    /// A further use begins or ends. From any thread.
    void Enter() noexcept;
    void Leave() noexcept;

    /// Returns once nothing has used the process for `grace` milliseconds, or for `start` milliseconds if
    /// nothing has used it at all. Once only: COM has then been told to send new clients elsewhere.
    void WaitUntilUnused(DWORD start, DWORD grace);

  private:
    UniqueHandle m_left; // event: the last use has ended
    bool m_counted = true;
};

/// One use of the process, as long as it lives.
class ServerUse {
  public:
    explicit ServerUse(ServerProcess& process) noexcept : m_process(process) { m_process.Enter(); }
    ServerUse(const ServerUse&) = delete;
    ServerUse& operator=(const ServerUse&) = delete;
    ~ServerUse() { m_process.Leave(); }

  private:
    ServerProcess& m_process;
};

} // namespace kemba::substitute
