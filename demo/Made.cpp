// Writing and reading the record of what was made.
#include "demo/Made.h"

#include <windows.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/Handles.h"
#include "core/Utf8.h"

namespace demo {

void RememberMade(std::string_view kind, const std::wstring& name) {
    wchar_t path[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(kRecordVariable, path, MAX_PATH);
    if (length == 0) {
        return;
    }
    std::string text(name.size() * 3, '\0');
    text.resize(OCore::EncodeUtf8(name, text));
    const std::string line = std::string(kind) + " " + text + "\n";
    const OCore::UniqueHandle file =
        OCore::OwnFile(CreateFileW(length < MAX_PATH ? path : L"", FILE_APPEND_DATA,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, 0, nullptr));
    DWORD written = 0;
    if (!file || !WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) ||
        written != line.size()) {
        throw std::runtime_error("what is made cannot be recorded, error " + std::to_string(GetLastError()));
    }
}

std::vector<Made> ReadMade(std::string_view record) {
    std::vector<Made> all;
    for (std::size_t end = 0; (end = record.find('\n')) != record.npos; record.remove_prefix(end + 1)) {
        const std::string_view line = record.substr(0, end);
        const std::size_t blank = line.find(' ');
        if (blank == line.npos) {
            continue;
        }
        const std::string_view name = line.substr(blank + 1);
        std::wstring text(name.size() + 1, L'\0'); // a lead without all of its bytes may make two units
        text.resize(OCore::DecodeUtf8(name, text));
        all.push_back({std::string(line.substr(0, blank)), text});
    }
    return all;
}

} // namespace demo
