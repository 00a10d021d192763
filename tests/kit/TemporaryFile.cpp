// A file of a test's own.
#include "tests/kit/TemporaryFile.h"

#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kit {

std::string ReadBytes(const std::wstring& path, std::size_t count) {
    constexpr ULONGLONG kPatience = 5'000; // milliseconds
    const ULONGLONG end = GetTickCount64() + kPatience;
    for (;; Sleep(10)) {
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        if (bytes.size() >= count || GetTickCount64() >= end) {
            return bytes;
        }
    }
}

void WriteBytes(const std::wstring& path, std::string_view bytes) {
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

TemporaryFile::TemporaryFile() {
    wchar_t folder[MAX_PATH + 1];
    wchar_t path[MAX_PATH + 1];
    if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kmb", 0, path) == 0) {
        throw std::runtime_error("a temporary file cannot be made");
    }
    m_path = path;
}

TemporaryFile::TemporaryFile(std::string_view bytes) : TemporaryFile() {
    WriteBytes(m_path, bytes);
}

TemporaryFile::~TemporaryFile() {
    DeleteFileW(m_path.c_str());
}

} // namespace kit
