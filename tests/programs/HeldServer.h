// The registered server, kept running for a test with many clients, and ended if it no longer answers.
#pragma once

#include <windows.h>
#include <DriverAutomation.h>

#include <chrono>
#include <string>
#include <thread>

#include "automation/Owners.h"
#include "tests/kit/Owners.h"

namespace kit {

/// Holds an object of each interface. That keeps the server from ending between two clients, and Wine's
/// runtime from a wait without end, which it may fall into when the last object of an interface goes in the
/// moment in which a call of it ends.
class HeldServer {
  public:
    /// Starts the server; after `limit` the server's process is ended, so that calls that wait for it fail.
    /// Throws ComError, and std::runtime_error when the server is not the only one.
    HeldServer(const std::wstring& printer, std::chrono::seconds limit);
    HeldServer(const HeldServer&) = delete;
    HeldServer& operator=(const HeldServer&) = delete;
    ~HeldServer();

    /// Valid as long as the server is held.
    HANDLE Process() const { return m_process.get(); }
    /// Whether the server's process is still the one that was started first, and the only one.
    bool IsStillTheOne() const;
    /// Ends the server's process: for a server whose clients wait in vain.
    void End();

  private:
    void EndAfter(std::chrono::milliseconds limit);

    kemba::ComPtr<IVersionInformation> m_version;
    kemba::ComPtr<IDriverActions> m_actions;
    kemba::ComPtr<IDriverAutomation> m_automation;
    kemba::ComPtr<IDriverSettings> m_settings;
    kemba::ComPtr<IPrinterInformation> m_information;
    kemba::ComPtr<IPrinterQueue> m_queue;
    DWORD m_processId = 0;
    UniqueHandle m_process;
    UniqueHandle m_over; // set when the limit is of no interest any more
    std::thread m_watch;
};

} // namespace kit
