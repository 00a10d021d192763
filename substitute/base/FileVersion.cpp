// Reading a program file's version.
#include "substitute/base/FileVersion.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kemba::substitute {

std::uint64_t VersionOfFile(const std::wstring& path) {
    const DWORD size = path.empty() ? 0 : GetFileVersionInfoSizeW(path.c_str(), nullptr);
    std::vector<BYTE> record(size);
    void* found = nullptr;
    UINT length = 0;
    if (size == 0 || !GetFileVersionInfoW(path.c_str(), 0, size, record.data()) ||
        !VerQueryValueW(record.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO)) {
        return 0;
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::uint64_t{fixed.dwFileVersionMS} << 32 | fixed.dwFileVersionLS;
}

} // namespace kemba::substitute
