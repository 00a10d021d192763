// The other end of a printer port on Wine.
#include "demo/PortTarget.h"

#include <windows.h>

#include <cstddef>
#include <string>

#include "demo/Made.h"
#include "demo/SpoolerError.h"

namespace demo {
namespace {

constexpr wchar_t kPortsKey[] = LR"(Software\Wine\Printing\Spooler)";

/// The host's path of a file, for the host's shell.
std::wstring HostPath(const std::wstring& file) {
    using GetHostPath = char*(CDECL*)(const wchar_t*);
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
    if (!address) {
        throw SpoolerError("asking for the host's path", ERROR_CALL_NOT_IMPLEMENTED);
    }
    char* const path = reinterpret_cast<GetHostPath>(reinterpret_cast<void*>(address))(file.c_str());
    if (!path) {
        throw SpoolerError("asking for the host's path", ERROR_PATH_NOT_FOUND);
    }
    const int size = MultiByteToWideChar(CP_UTF8, 0, path, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, path, -1, wide.data(), size);
    wide.pop_back(); // the zero at the end
    HeapFree(GetProcessHeap(), 0, path);
    return wide;
}

std::wstring QuotedForShell(const std::wstring& path) {
    std::wstring quoted = L"'";
    for (const wchar_t character : path) {
        quoted += character == L'\'' ? std::wstring(LR"('\'')") : std::wstring(1, character);
    }
    return quoted + L"'";
}

} // namespace

void ConnectPort(const std::wstring& port, const std::wstring& file) {
    RememberMade(kMadeTarget, port);
    const std::wstring target = L"|cat >> " + QuotedForShell(HostPath(file));
    const LONG status = RegSetKeyValueW(HKEY_CURRENT_USER, kPortsKey, port.c_str(), REG_SZ, target.c_str(),
                                        static_cast<DWORD>((target.size() + 1) * sizeof(wchar_t)));
    if (status != ERROR_SUCCESS) {
        throw SpoolerError("connecting a printer port", static_cast<DWORD>(status));
    }
}

void DisconnectPort(const std::wstring& port) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kPortsKey, port.c_str());
}

} // namespace demo
