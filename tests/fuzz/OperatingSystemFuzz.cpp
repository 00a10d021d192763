// Names and editions of systems, read off the tables as conditions.
#include <windows.h>

#include <cstddef>
#include <string>

#include "platform/OperatingSystem.h"
#include "tests/fuzz/Fuzz.h"

using namespace kit;

namespace {

int g_metrics; // what is true of the system: bits of the four that are asked for

int Metric(int index) {
    return index >= 86 && index <= 89 ? g_metrics & 1 << (index - 86) : 0;
}
bool Has(int index) {
    return Metric(index) != 0;
}

std::wstring NameByRules(const OSVERSIONINFOEXW& version) {
    const bool workstation = version.wProductType == 1;
    const DWORD build = version.dwBuildNumber;
    const std::wstring number =
        std::to_wstring(version.dwMajorVersion) + L"." + std::to_wstring(version.dwMinorVersion);
    if (number == L"10.0") {
        if (workstation) {
            return build >= 22000 ? L"Windows 11" : L"Windows 10";
        }
        return build == 14393   ? L"Windows Server 2016"
               : build == 17763 ? L"Windows Server 2019"
                                : L"Unknown Version of Windows Server";
    }
    if (number == L"6.3") {
        return workstation ? L"Windows 8.1" : L"Windows Server 2012 R2";
    }
    if (number == L"6.2") {
        return workstation ? L"Windows 8" : L"Windows Server 2012";
    }
    if (number == L"6.1") {
        return workstation ? L"Windows 7" : L"Windows Server 2008 R2";
    }
    if (number == L"6.0") {
        return workstation ? L"Windows Vista" : L"Windows Server 2008";
    }
    return number == L"5.2"   ? L"Windows Server 2003"
           : number == L"5.1" ? L"Windows XP"
           : number == L"5.0" ? L"Windows 2000"
                              : L"Windows " + number;
}

std::wstring EditionByRules(const OSVERSIONINFOEXW& version) {
    const auto suite = [&](unsigned bit) { return (version.wSuiteMask & bit) != 0; };
    const bool is51 = version.dwMajorVersion == 5 && version.dwMinorVersion == 1;
    const bool is52 = version.dwMajorVersion == 5 && version.dwMinorVersion == 2;
    if (version.wProductType == 1) {
        std::wstring edition = suite(0x0200)           ? L"Home Edition"
                               : is51 && suite(0x0040) ? L"Embedded"
                                                       : L"Professional";
        if (is51) {
            edition = Has(87)   ? L"Media Center"
                      : Has(88) ? L"Starter Edition"
                      : Has(86) ? L"Tablet PC Edition"
                                : edition;
        }
        return edition;
    }
    if (version.wProductType != 2 && version.wProductType != 3) {
        return {};
    }
    const bool later = version.dwMajorVersion == 6 || is52;
    std::wstring edition = suite(0x0080)   ? (later ? L"Datacenter Edition" : L"Datacenter Server")
                           : suite(0x0002) ? (later ? L"Enterprise Edition" : L"Advanced Server")
                           : is52 && version.wSuiteMask == 0x0400 ? L"Web Edition"
                           : later                                ? L"Standard Edition"
                                                                  : L"Server";
    return edition + (is52 && Has(89) ? L"R2" : L"");
}

FUZZ_TARGET(OperatingSystems, 6000) {
    constexpr DWORD kMajors[] = {5, 5, 6, 6, 10, 0, 4, 11, 0xFFFFFFFF};
    constexpr DWORD kMinors[] = {0, 0, 1, 2, 3, 4, 0x80000000};
    constexpr DWORD kBuilds[] = {14392, 14393, 14394,  17763,   17762,      21999,
                                 22000, 0,     0xFFFF, 0x10000, 0x80000000, 0xFFFFFFFF};
    constexpr WORD kSuites[] = {0x0002, 0x0040, 0x0080, 0x0200, 0x0400, 0x0001, 0x8000};
    OSVERSIONINFOEXW version{};
    version.dwMajorVersion = input.OneOf(kMajors);
    version.dwMinorVersion = input.OneOf(kMinors);
    version.dwBuildNumber = input.OnceIn(3) ? static_cast<DWORD>(input.Bits()) : input.OneOf(kBuilds);
    version.wProductType = static_cast<BYTE>(input.OnceIn(10) ? input.Below(256) : 1 + input.Below(3));
    for (std::size_t left = input.Below(4); left > 0; --left) {
        version.wSuiteMask = static_cast<WORD>(version.wSuiteMask | input.OneOf(kSuites));
    }
    const std::wstring pack = input.OnceIn(2) ? std::wstring() : input.WideText(127);
    pack.copy(version.szCSDVersion, pack.size());
    g_metrics = static_cast<int>(input.Below(16));
    input.Say([&] {
        return "version " + std::to_string(version.dwMajorVersion) + "." +
               std::to_string(version.dwMinorVersion) + " build " + std::to_string(version.dwBuildNumber) +
               ", product type " + std::to_string(version.wProductType) + ", suites " +
               std::to_string(version.wSuiteMask) + ", metrics " + std::to_string(g_metrics) +
               ", service pack " + Literal(pack);
    });
    EXPECT_EQ(kemba::NameOfSystem(version).Wide(), NameByRules(version));
    EXPECT_EQ(kemba::EditionOfSystem(version, [](int index) -> int { return Metric(index); }).Wide(),
              EditionByRules(version));
    EXPECT_EQ(kemba::BuildTextOfSystem(version).Wide(), L"Build " +
                                                            std::to_wstring(version.dwBuildNumber % 0x10000) +
                                                            (pack.empty() ? L"" : L" (" + pack + L")"));
}

} // namespace
