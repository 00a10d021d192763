// Looking for the server program's processes, and at the registry.
#include "tests/programs/ServerProgram.h"

#include <tlhelp32.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tests/kit/Owners.h"

namespace kit {
namespace {

void AppendSnapshot(HKEY key, const std::wstring& path, REGSAM view, std::vector<std::wstring>& lines) {
    lines.push_back(path);
    std::array<wchar_t, 16'384> name;
    std::array<BYTE, 65'536> data;
    for (DWORD index = 0;; ++index) {
        auto nameLength = static_cast<DWORD>(name.size());
        auto dataSize = static_cast<DWORD>(data.size());
        DWORD type = 0;
        if (RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, data.data(), &dataSize) !=
            ERROR_SUCCESS) {
            break;
        }
        lines.push_back(path + L" : " + name.data() + L" = " + std::to_wstring(type) + L" " +
                        std::wstring(data.begin(), data.begin() + dataSize));
    }
    for (DWORD index = 0;; ++index) {
        auto nameLength = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, index, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        if (const UniqueKey child = OpenKey(key, name.data(), KEY_READ | view)) {
            AppendSnapshot(child.get(), path + L"\\" + name.data(), view, lines);
        }
    }
}

} // namespace

std::vector<DWORD> RunningServers() {
    std::vector<DWORD> found;
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more;
         more = Process32NextW(snapshot.get(), &entry)) {
        if (lstrcmpiW(entry.szExeFile, L"kemba-dal.exe") == 0) {
            found.push_back(entry.th32ProcessID);
        }
    }
    return found;
}

std::optional<std::wstring> ReadRegistryText(HKEY root, const std::wstring& key, const std::wstring& value,
                                             REGSAM view) {
    const UniqueKey opened = OpenKey(root, key, KEY_READ | view);
    wchar_t text[1'024] = {};
    DWORD size = sizeof(text);
    if (!opened || RegGetValueW(opened.get(), nullptr, value.c_str(), RRF_RT_REG_SZ, nullptr, text, &size) !=
                       ERROR_SUCCESS) {
        return std::nullopt;
    }
    return text;
}

std::vector<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& key, REGSAM view) {
    std::vector<std::wstring> lines;
    if (const UniqueKey opened = OpenKey(root, key, KEY_READ | view)) {
        AppendSnapshot(opened.get(), key, view, lines);
    }
    return lines;
}

} // namespace kit
