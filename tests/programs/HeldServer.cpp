// Holding the server's objects, and watching the time.
#include "tests/programs/HeldServer.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "automation/Activation.h"
#include "tests/kit/Owners.h"
#include "tests/programs/ServerProgram.h"

namespace kit {

HeldServer::HeldServer(const std::wstring& printer, std::chrono::seconds limit)
    : m_over(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    m_version = kemba::Activate<VersionInformation, IVersionInformation>();
    // Another one may be on its way to its end: one that served the test before, or that two clients started
    // at once.
    std::vector<DWORD> servers = RunningServers();
    for (int tenths = 0; servers.size() > 1 && tenths < 450; ++tenths) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        servers = RunningServers();
    }
    if (servers.size() != 1) {
        throw std::runtime_error(std::to_string(servers.size()) + " servers are running");
    }
    m_processId = servers.front();
    m_process = UniqueHandle(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_SET_INFORMATION |
                                             PROCESS_VM_READ | PROCESS_TERMINATE | SYNCHRONIZE,
                                         FALSE, m_processId));
    if (!m_process.get() || !m_over.get()) {
        throw std::runtime_error("the server cannot be watched, error " + std::to_string(GetLastError()));
    }
    m_actions = kemba::Activate<DriverActions, IDriverActions>();
    m_automation = kemba::ActivateForPrinter(printer.c_str());
    m_settings = kemba::CallForObject(m_automation, &IDriverAutomation::GetSettings);
    m_information = kemba::CallForObject(m_automation, &IDriverAutomation::GetPrinterInformation);
    m_queue = kemba::CallForObject(m_automation, &IDriverAutomation::GetPrinterQueue);
    m_watch = std::thread([this, limit] { EndAfter(limit); });
}

HeldServer::~HeldServer() {
    // The objects go while the time is still watched.
    m_queue.Reset();
    m_information.Reset();
    m_settings.Reset();
    m_automation.Reset();
    m_actions.Reset();
    m_version.Reset();
    SetEvent(m_over.get());
    m_watch.join();
}

bool HeldServer::IsStillTheOne() const {
    return RunningServers() == std::vector<DWORD>{m_processId};
}

void HeldServer::End() {
    TerminateProcess(m_process.get(), 1);
}

void HeldServer::EndAfter(std::chrono::milliseconds limit) {
    if (WaitForSingleObject(m_over.get(), static_cast<DWORD>(limit.count())) == WAIT_TIMEOUT) {
        std::printf("the server is ended: it did not answer in time\n");
        End();
    }
}

} // namespace kit
