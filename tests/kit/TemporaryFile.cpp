// A file of a test's own.
#include "tests/kit/TemporaryFile.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kit {

TemporaryFile::TemporaryFile() {
    wchar_t folder[MAX_PATH + 1];
    wchar_t path[MAX_PATH + 1];
    if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kmb", 0, path) == 0) {
        throw std::runtime_error("a temporary file cannot be made");
    }
    m_path = path;
}

TemporaryFile::TemporaryFile(std::string_view bytes) : TemporaryFile() {
    std::ofstream file(std::filesystem::path(m_path), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TemporaryFile::~TemporaryFile() {
    DeleteFileW(m_path.c_str());
}

std::string TemporaryFile::Read() const {
    std::ifstream file(std::filesystem::path(m_path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace kit
