// A printer port of a test's own whose other end is a file.
#include "tests/kit/PrinterPort.h"

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <string>

#include "demo/PortTarget.h"
#include "demo/Wine.h"
#include "tests/kit/TemporaryFile.h"

namespace kit {
namespace {

std::wstring UniquePortName() {
    static std::atomic<int> made{0};
    return L"KIT" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made) + L":";
}

} // namespace

PrinterPort::PrinterPort() : m_name(demo::IsWine() ? UniquePortName() : m_file.Path()) {
    if (demo::IsWine()) {
        demo::ConnectPort(m_name, m_file.Path());
    } // on Windows the port is made with its printer
}

PrinterPort::~PrinterPort() {
    if (demo::IsWine()) {
        demo::DisconnectPort(m_name);
    }
}

std::string PrinterPort::Received(std::size_t count) const {
    return ReadBytes(m_file.Path(), count);
}

} // namespace kit
