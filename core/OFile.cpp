// Files over CreateFileW.
#include "core/OFile.h"

#include <cstdint>

#include "core/Handles.h"
#include "core/OString.h"

namespace {

DWORD ShareOf(std::uint32_t mode) {
    switch (mode & OFile::kShareMask) {
    case OFile::kShareNone: return 0;
    case OFile::kShareRead: return FILE_SHARE_READ;
    case OFile::kShareWrite: return FILE_SHARE_WRITE;
    default: return FILE_SHARE_READ | FILE_SHARE_WRITE;
    }
}

/// A handle for its owner, or null.
HANDLE OpenHandle(const OString& name, std::uint32_t mode) {
    const DWORD access = mode & OFile::kWrite ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
    const DWORD disposition = mode & OFile::kOpenAlways ? OPEN_ALWAYS : OPEN_EXISTING;
    return OCore::OwnFile(CreateFileW(name.Wide(), access, ShareOf(mode), nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL, nullptr))
        .release();
}

} // namespace

OFile::~OFile() {
    OFile::Close();
}

std::uint32_t OFile::WriteRaw(const void* bytes, std::uint32_t count) {
    DWORD written = 0;
    return m_handle && WriteFile(m_handle.get(), bytes, count, &written, nullptr) ? written : 0;
}

bool OFile::Open(const OString& name, std::uint32_t mode) {
    Close();
    m_name = name;
    m_handle.reset(OpenHandle(name, mode));
    if (!m_handle) {
        return false;
    }
    if (mode & kWrite) {
        if (mode & kAppend) {
            Seek(0, FILE_END);
        } else {
            SetEndOfFile(m_handle.get());
        }
    }
    return true;
}

void OFile::Close() {
    if (m_handle) {
        Flush();
        m_handle.reset();
    }
}

std::uint32_t OFile::Seek(std::int32_t distance, std::uint32_t method) {
    if (!m_handle) {
        return 0;
    }
    Flush();
    return SetFilePointer(m_handle.get(), distance, nullptr, method);
}

std::uint32_t OFile::GetSize() {
    return m_handle ? ::GetFileSize(m_handle.get(), nullptr) : 0;
}

std::uint32_t OFile::Read(void* buffer, std::uint32_t count) {
    DWORD read = 0;
    return m_handle && ReadFile(m_handle.get(), buffer, count, &read, nullptr) ? read : 0;
}

bool OFile::Exists(const OString& name) {
    return OCore::UniqueHandle(OpenHandle(name, kRead)) != nullptr;
}
