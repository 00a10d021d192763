// Running the server program, and looking at the registry.
#include "ServerProgram.h"

#include <tlhelp32.h>

#include <array>
#include <fstream>
#include <iterator>
#include <memory>

namespace {

struct HandleCloser {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using HeldHandle = std::unique_ptr<void, HandleCloser>;

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using HeldKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

HeldKey OpenKey(HKEY parent, const std::wstring& name) {
    HKEY opened = nullptr;
    RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ, &opened);
    return HeldKey(opened);
}

void AppendSnapshot(HKEY key, const std::wstring& path, std::vector<std::wstring>& lines) {
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
        lines.push_back(path + L" : " + name.data() + L" = " +
                        std::wstring(data.begin(), data.begin() + dataSize));
    }
    for (DWORD index = 0;; ++index) {
        auto nameLength = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, index, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        if (const HeldKey child = OpenKey(key, name.data())) {
            AppendSnapshot(child.get(), path + L"\\" + name.data(), lines);
        }
    }
}

/// Runs a command line and waits for its end; its exit status, or -1. `written` gets its output and errors.
int RunLine(std::wstring line, std::string* written) {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::wstring file = folder + (L"kemba-dal " + std::to_wstring(GetCurrentProcessId()) + L".txt");
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    HeldHandle output(
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.get();
    startup.hStdError = output.get();
    PROCESS_INFORMATION started = {};
    int status = -1;
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &started)) {
        const HeldHandle thread(started.hThread);
        const HeldHandle process(started.hProcess);
        DWORD code = 0;
        if (WaitForSingleObject(process.get(), 60'000) == WAIT_OBJECT_0 &&
            GetExitCodeProcess(process.get(), &code)) {
            status = static_cast<int>(code);
        }
    }
    output.reset();
    if (written) {
        std::ifstream stream(file.c_str(), std::ios::binary);
        written->assign(std::istreambuf_iterator<char>(stream), {});
    }
    DeleteFileW(file.c_str());
    return status;
}

std::wstring ScriptLine(const std::wstring& file, const std::wstring& arguments) {
    return L"cscript.exe //nologo \"" + file + L"\" " + arguments;
}

} // namespace

std::wstring ServerProgramPath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own = path;
    return own.substr(0, own.rfind(L'\\') + 1) + L"kemba-dal.exe";
}

int RunServerProgram(const std::wstring& words, std::string* errors) {
    return RunLine(L"\"" + ServerProgramPath() + L"\" " + words, errors);
}

int RunScript(const std::wstring& file, const std::wstring& arguments, std::string& output) {
    return RunLine(ScriptLine(file, arguments), &output);
}

std::vector<DWORD> RunningServers() {
    std::vector<DWORD> found;
    const HeldHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
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

std::optional<std::wstring> ReadRegistryText(HKEY root, const std::wstring& key, const std::wstring& value) {
    wchar_t text[1'024] = {};
    DWORD size = sizeof(text);
    if (RegGetValueW(root, key.c_str(), value.c_str(), RRF_RT_REG_SZ, nullptr, text, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    return text;
}

std::vector<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& key) {
    std::vector<std::wstring> lines;
    if (const HeldKey opened = OpenKey(root, key)) {
        AppendSnapshot(opened.get(), key, lines);
    }
    return lines;
}
