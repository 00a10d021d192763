// Opening and reading files.
#include "substitute/base/InputFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "core/Handles.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"

namespace kemba::substitute {
namespace {

constexpr std::size_t kLargestCall = std::size_t{1} << 20; // bytes asked for in one call

} // namespace

InputFile::InputFile(std::wstring kind, std::wstring path)
    : m_kind(std::move(kind)), m_path(std::move(path)) {
    NeedFilePath(m_path);
    m_file = OCore::OwnFile(CreateFileW(m_path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!m_file) {
        Fail(L"opening", GetLastError());
    }
    if (GetFileType(m_file.get()) != FILE_TYPE_DISK) { // a device may never end
        throw WindowsFailure(L"\"" + m_path + L"\" is no file", ERROR_BAD_FILE_TYPE);
    }
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(m_file.get(), &size)) {
        Fail(L"reading", GetLastError());
    }
    m_size = static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t InputFile::Read(void* bytes, std::size_t room) {
    std::size_t read = 0;
    while (read < room) { // one call may give less than it was asked for
        DWORD count = 0;
        if (!ReadFile(m_file.get(), static_cast<char*>(bytes) + read,
                      static_cast<DWORD>(std::min(room - read, kLargestCall)), &count, nullptr)) {
            Fail(L"reading", GetLastError());
        }
        if (count == 0) {
            break;
        }
        read += count;
    }
    return read;
}

void InputFile::Fail(const wchar_t* what, DWORD error) const {
    throw WindowsFailure(what + (L" the " + m_kind) + L" \"" + m_path + L"\" failed", error);
}

std::size_t InputFile::GetSize(std::size_t limit) const {
    if (m_size > limit) {
        Fail(L"reading", ERROR_FILE_TOO_LARGE);
    }
    return static_cast<std::size_t>(m_size);
}

} // namespace kemba::substitute
