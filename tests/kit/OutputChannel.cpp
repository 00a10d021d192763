// Where a started program's output goes.
#include "tests/kit/OutputChannel.h"

#include <stdexcept>
#include <utility>

#include "tests/kit/Owners.h"

namespace kit {
namespace {

UniqueHandle Open(const wchar_t* path, DWORD access, DWORD share) {
    SECURITY_ATTRIBUTES attributes = Inheritable();
    UniqueHandle file = OwnFile(CreateFileW(path, access, share, &attributes, OPEN_EXISTING, 0, nullptr));
    if (!file) {
        throw std::runtime_error("a file for a program's input or output cannot be opened");
    }
    return file;
}

} // namespace

SECURITY_ATTRIBUTES Inheritable() {
    SECURITY_ATTRIBUTES attributes{};
    attributes.nLength = sizeof attributes;
    attributes.bInheritHandle = TRUE;
    return attributes;
}

UniqueHandle OpenEmptyInput() {
    return Open(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
}

OutputChannel::OutputChannel(bool toFile) {
    if (toFile) {
        m_file.emplace();
        m_write = Open(m_file->Path().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
        return;
    }
    SECURITY_ATTRIBUTES attributes = Inheritable();
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &attributes, 0)) {
        throw std::runtime_error("a pipe cannot be made");
    }
    m_read = UniqueHandle(read);
    m_write = UniqueHandle(write);
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
}

void OutputChannel::Drain() {
    char buffer[4096];
    DWORD waiting = 0;
    while (m_read.get() && PeekNamedPipe(m_read.get(), nullptr, 0, nullptr, &waiting, nullptr) &&
           waiting > 0) {
        DWORD taken = 0;
        if (!ReadFile(m_read.get(), buffer, sizeof buffer, &taken, nullptr)) {
            return;
        }
        m_bytes.append(buffer, taken);
    }
}

std::string OutputChannel::Finish() {
    m_write.reset();
    if (m_file) {
        return m_file->Read();
    }
    Drain();
    return std::move(m_bytes);
}

} // namespace kit
