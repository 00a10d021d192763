// The registry entries, row by row.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "substitute/objects/ContractTypes.h"
#include "substitute/registration/RegistrationEntries.h"

using namespace kemba::substitute;

namespace {

const LibraryDescription kLibrary{L"{LIBRARY}", L"Name of it", L"2.a", L"4", {{L"{INTERFACE}", L"IOne"}}};

/// The entries of a class; what says nothing of the program is marked with "=".
std::vector<std::wstring> LinesOfClass(const std::wstring& id, const std::wstring& name) {
    const std::wstring key = L"CLSID\\" + id;
    const std::wstring words = L"KEMBA substitute driver automation: " + name;
    return {
        key + L" []: " + words,
        key + L" [AppID]: {2A67A06D-D94F-42C1-9074-33F05630EF24}",
        key + L"\\LocalServer32 []: \"C:\\A folder\\it.exe\"",
        key + L"\\LocalServer32 [ServerExecutable]: C:\\A folder\\it.exe",
        key + L"\\TypeLib []= {LIBRARY}",
        key + L"\\Version []= 2.a",
        key + L"\\ProgID []: Kemba." + name,
        L"Kemba." + name + L" []: " + words,
        L"Kemba." + name + L"\\CLSID []: " + id,
    };
}

TEST(RegistrationEntries, AreTheseForAProgramAndALibrary) {
    std::vector<std::wstring> expected{
        L"AppID\\{2A67A06D-D94F-42C1-9074-33F05630EF24} []: KEMBA substitute driver automation",
        L"AppID\\kemba-dal.exe [AppID]: {2A67A06D-D94F-42C1-9074-33F05630EF24}",
    };
    for (const auto& [id, name] :
         {std::pair(L"{F56F2E65-2620-41A2-84B8-5CE2F149E1D0}", L"DriverAutomation"),
          std::pair(L"{165A1555-26FC-47F1-9E9E-9F1C7AD5E27A}", L"DriverActions"),
          std::pair(L"{966E0F51-1745-406C-8F30-9A5758854678}", L"VersionInformation")}) {
        const auto lines = LinesOfClass(id, name);
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    expected.insert(
        expected.end(),
        {
            L"TypeLib\\{LIBRARY}\\2.a []= Name of it",
            L"TypeLib\\{LIBRARY}\\2.a\\0\\win64 []: C:\\A folder\\it.exe",
            L"TypeLib\\{LIBRARY}\\2.a\\0\\win32 []: C:\\A folder\\it.exe",
            L"TypeLib\\{LIBRARY}\\2.a\\FLAGS []= 4",
            L"TypeLib\\{LIBRARY}\\2.a\\HELPDIR []: C:\\A folder",
            L"Interface\\{INTERFACE} []= IOne",
            L"Interface\\{INTERFACE}\\ProxyStubClsid32 []= {00020424-0000-0000-C000-000000000046}",
            L"Interface\\{INTERFACE}\\TypeLib []= {LIBRARY}",
            L"Interface\\{INTERFACE}\\TypeLib [Version]= 2.a",
        });
    std::vector<std::wstring> lines;
    for (const RegistrationEntry& entry : RegistrationEntries(kLibrary, L"C:\\A folder\\it.exe")) {
        lines.push_back(entry.key + L" [" + entry.name + (entry.shared ? L"]= " : L"]: ") + entry.text);
    }
    EXPECT_EQ(lines, expected);
}

TEST(RegistrationEntries, DescribeTheContractsLibrary) {
    const ContractTypes types;
    const LibraryDescription library = DescribeLibrary(types.GetLibrary());
    EXPECT_EQ(library.id, L"{92F852BA-8681-4312-8DBC-427E0BA3E3CE}");
    EXPECT_EQ(library.version, L"1.0");
    EXPECT_EQ(library.flags, L"0");
    std::vector<std::wstring> interfaces;
    for (const LibraryDescription::Interface& described : library.interfaces) {
        interfaces.push_back(described.name + L" " + described.id);
    }
    EXPECT_EQ(interfaces,
              (std::vector<std::wstring>{L"IDriverSettings {AA5EEEEE-B490-4E7D-8A61-6815FFE141AB}",
                                         L"IDriverActions {7BBEBD77-8ACD-487C-8A9D-74CBD0B9515D}",
                                         L"IPrinterQueue {44B3B4AD-1AA5-4DD9-B547-47FBD9DEE9B9}",
                                         L"IPrinterInformation {8DF5480A-139A-4610-9D3F-CD84F0A1AFC5}",
                                         L"IVersionInformation {5BFC3DC7-8F55-4F43-BFD1-361C1335AD9B}",
                                         L"IDriverAutomation {68F02881-B954-4562-9393-2ECBE3A5964E}"}));
    EXPECT_FALSE(library.name.empty());
}

} // namespace
