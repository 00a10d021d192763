// Looking for the contract's keys.
#include "tests/acceptance/Registered.h"

#include <windows.h>
#include <DriverAutomation.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/programs/OwnClasses.h"
#include "tests/programs/ServerProgram.h"

namespace acceptance {

std::vector<std::string> RegisteredServers() {
    const std::wstring keys[] = {
        L"CLSID\\" + kit::TextOf(__uuidof(DriverAutomation)),
        L"CLSID\\" + kit::TextOf(__uuidof(DriverActions)),
        L"CLSID\\" + kit::TextOf(__uuidof(VersionInformation)),
        L"TypeLib\\{92F852BA-8681-4312-8DBC-427E0BA3E3CE}",
        L"Interface\\" + kit::TextOf(__uuidof(IDriverAutomation)),
        L"Interface\\" + kit::TextOf(__uuidof(IDriverSettings)),
        L"Interface\\" + kit::TextOf(__uuidof(IDriverActions)),
        L"Interface\\" + kit::TextOf(__uuidof(IPrinterQueue)),
        L"Interface\\" + kit::TextOf(__uuidof(IPrinterInformation)),
        L"Interface\\" + kit::TextOf(__uuidof(IVersionInformation)),
    };
    std::vector<std::string> found;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
            for (const std::wstring& key : keys) {
                const std::wstring path = L"Software\\Classes\\" + key;
                if (!kit::OpenKey(root, path, KEY_READ | view)) {
                    continue;
                }
                std::string line =
                    std::string(root == HKEY_LOCAL_MACHINE ? "for all users: " : "for this user: ") +
                    kit::Narrow(key);
                for (const wchar_t* const kind :
                     {L"\\LocalServer32", L"\\InprocServer32", L"\\1.0\\0\\win64"}) {
                    if (const auto program = kit::ReadRegistryText(root, path + kind, {}, view)) {
                        line += ", served by " + kit::Narrow(*program);
                    }
                }
                found.push_back(line);
            }
        }
    }
    return found;
}

} // namespace acceptance
