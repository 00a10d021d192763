// Writing and removing the registry entries.
#include "substitute/server/Registration.h"

#include <DriverAutomation.h>

#include <array>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/server/ServerClasses.h"
#include "substitute/server/TypeLibraryRegistration.h"

namespace kemba::substitute {
namespace {

constexpr GUID kApplication = {0x2A67A06D, 0xD94F, 0x42C1, {0x90, 0x74, 0x33, 0xF0, 0x56, 0x30, 0xEF, 0x24}};
constexpr wchar_t kApplicationName[] = L"KEMBA substitute driver automation";
constexpr wchar_t kClasses[] = L"Software\\Classes\\";

HKEY RootOf(Scope scope) {
    return scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring Braced(REFGUID id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return text;
}

std::wstring LibraryId(const ContractTypes& types) {
    TLIBATTR* attributes = nullptr;
    ThrowIfFailed(types.GetLibrary().GetLibAttr(&attributes), L"reading the type library failed");
    const GUID id = attributes->guid;
    types.GetLibrary().ReleaseTLibAttr(attributes);
    return Braced(id);
}

std::wstring ClassKey(const ServerClass& served) {
    return L"CLSID\\" + Braced(served.id);
}

/// The name by which scripts make an object of the class.
std::wstring ProgramId(const ServerClass& served) {
    return std::wstring(L"Kemba.") + served.name;
}

/// Keys that are the server's alone, each with all that lies below it.
std::vector<std::wstring> OwnKeys(const ContractTypes& types) {
    std::vector<std::wstring> keys;
    for (const ServerClass& served : ServerClasses()) {
        keys.push_back(ClassKey(served));
        keys.push_back(ProgramId(served));
    }
    keys.push_back(L"AppID\\" + Braced(kApplication));
    keys.push_back(L"AppID\\kemba-dal.exe");
    keys.push_back(L"TypeLib\\" + LibraryId(types));
    for (const IID& iid :
         {__uuidof(IDriverAutomation), __uuidof(IDriverSettings), __uuidof(IDriverActions),
          __uuidof(IPrinterQueue), __uuidof(IPrinterInformation), __uuidof(IVersionInformation)}) {
        keys.push_back(L"Interface\\" + Braced(iid));
        // The type library's registration also serves 32-bit programs.
        keys.push_back(L"Wow6432Node\\Interface\\" + Braced(iid));
    }
    return keys;
}

/// Writes one text, making the keys on the way; an empty value name is the key's own value.
void Write(Scope scope, const std::wstring& key, const wchar_t* value, const std::wstring& text) {
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const LSTATUS error =
        RegSetKeyValueW(RootOf(scope), (kClasses + key).c_str(), value, REG_SZ, text.c_str(), bytes);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"writing the registry key \"" + key + L"\" failed", static_cast<DWORD>(error));
    }
}

void RemoveTree(Scope scope, const std::wstring& key) {
    const LSTATUS error = RegDeleteTreeW(RootOf(scope), (kClasses + key).c_str());
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) {
        throw WindowsFailure(L"removing the registry key \"" + key + L"\" failed", static_cast<DWORD>(error));
    }
}

/// A user's classes may have been the first of their kind; the machine's folders belong to the system.
void RemoveUserFolderIfEmpty(const std::wstring& key) {
    const std::wstring path = kClasses + key;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return;
    }
    DWORD keys = 1;
    DWORD values = 1;
    RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    RegCloseKey(opened);
    if (keys == 0 && values == 0) {
        RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
    }
}

} // namespace

void RegisterServer(Scope scope, const ContractTypes& types, const std::wstring& path) {
    const std::wstring application = Braced(kApplication);
    Write(scope, L"AppID\\" + application, L"", kApplicationName);
    Write(scope, L"AppID\\kemba-dal.exe", L"AppID", application);
    for (const ServerClass& served : ServerClasses()) {
        const std::wstring key = ClassKey(served);
        Write(scope, key, L"", std::wstring(kApplicationName) + L": " + served.name);
        Write(scope, key, L"AppID", application);
        // Quoted, so that no blank in the path is taken for its end.
        Write(scope, key + L"\\LocalServer32", L"", L"\"" + path + L"\"");
        Write(scope, key + L"\\LocalServer32", L"ServerExecutable", path);
        Write(scope, key + L"\\TypeLib", L"", LibraryId(types));
        Write(scope, key + L"\\Version", L"", L"1.0");
        Write(scope, key + L"\\ProgID", L"", ProgramId(served));
        Write(scope, ProgramId(served), L"", std::wstring(kApplicationName) + L": " + served.name);
        Write(scope, ProgramId(served) + L"\\CLSID", L"", Braced(served.id));
    }
    RegisterTypeLibrary(scope, types.GetLibrary(), path);
}

void UnregisterServer(Scope scope, const ContractTypes& types) {
    UnregisterTypeLibrary(scope, types.GetLibrary());
    for (const std::wstring& key : OwnKeys(types)) {
        RemoveTree(scope, key);
    }
    if (scope == Scope::CurrentUser) {
        for (const wchar_t* const folder :
             {L"CLSID", L"AppID", L"TypeLib", L"Interface", L"Wow6432Node\\Interface", L"Wow6432Node"}) {
            RemoveUserFolderIfEmpty(folder);
        }
    }
}

} // namespace kemba::substitute
