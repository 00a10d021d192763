// Decisions on the version record, and the record that they fill.
#include "platform/OperatingSystem.h"

#include <algorithm>
#include <iterator>

#include "core/OString.h"
#include "core/OSynchronizer.h"
#include "core/SystemCalls.h"

namespace kemba {
namespace {

enum class Product { Workstation, Server, Any };

constexpr DWORD kAnyBuild = 0xFFFFFFFF;

struct NameRow {
    DWORD major;
    DWORD minor;
    Product product;
    DWORD firstBuild;
    DWORD lastBuild;
    const wchar_t* name;
};

// Kept on purpose: 5.2 is the server's name for a workstation too, and newer servers of 10.0 are unknown.
constexpr NameRow kNames[] = {
    {10, 0, Product::Workstation, 22000, kAnyBuild, L"Windows 11"},
    {10, 0, Product::Workstation, 0, 21999, L"Windows 10"},
    {10, 0, Product::Server, 14393, 14393, L"Windows Server 2016"},
    {10, 0, Product::Server, 17763, 17763, L"Windows Server 2019"},
    {10, 0, Product::Server, 0, kAnyBuild, L"Unknown Version of Windows Server"},
    {6, 3, Product::Workstation, 0, kAnyBuild, L"Windows 8.1"},
    {6, 3, Product::Server, 0, kAnyBuild, L"Windows Server 2012 R2"},
    {6, 2, Product::Workstation, 0, kAnyBuild, L"Windows 8"},
    {6, 2, Product::Server, 0, kAnyBuild, L"Windows Server 2012"},
    {6, 1, Product::Workstation, 0, kAnyBuild, L"Windows 7"},
    {6, 1, Product::Server, 0, kAnyBuild, L"Windows Server 2008 R2"},
    {6, 0, Product::Workstation, 0, kAnyBuild, L"Windows Vista"},
    {6, 0, Product::Server, 0, kAnyBuild, L"Windows Server 2008"},
    {5, 2, Product::Any, 0, kAnyBuild, L"Windows Server 2003"},
    {5, 1, Product::Any, 0, kAnyBuild, L"Windows XP"},
    {5, 0, Product::Any, 0, kAnyBuild, L"Windows 2000"},
};

bool IsWorkstation(const OSVERSIONINFOEXW& version) {
    return version.wProductType == VER_NT_WORKSTATION;
}

bool IsVersion(const OSVERSIONINFOEXW& version, DWORD major, DWORD minor) {
    return version.dwMajorVersion == major && version.dwMinorVersion == minor;
}

bool HasSuite(const OSVERSIONINFOEXW& version, WORD suite) {
    return (version.wSuiteMask & suite) != 0;
}

bool Matches(const NameRow& row, const OSVERSIONINFOEXW& version) {
    const Product product = IsWorkstation(version) ? Product::Workstation : Product::Server;
    return IsVersion(version, row.major, row.minor) &&
           (row.product == Product::Any || row.product == product) &&
           version.dwBuildNumber >= row.firstBuild && version.dwBuildNumber <= row.lastBuild;
}

const wchar_t* WorkstationEdition(const OSVERSIONINFOEXW& version, decltype(&::GetSystemMetrics) metric) {
    if (IsVersion(version, 5, 1)) {
        if (metric(SM_MEDIACENTER)) {
            return L"Media Center";
        }
        if (metric(SM_STARTER)) {
            return L"Starter Edition";
        }
        if (metric(SM_TABLETPC)) {
            return L"Tablet PC Edition";
        }
        if (!HasSuite(version, VER_SUITE_PERSONAL) && HasSuite(version, VER_SUITE_EMBEDDEDNT)) {
            return L"Embedded";
        }
    }
    return HasSuite(version, VER_SUITE_PERSONAL) ? L"Home Edition" : L"Professional";
}

OString ServerEdition(const OSVERSIONINFOEXW& version, decltype(&::GetSystemMetrics) metric) {
    const bool is52 = IsVersion(version, 5, 2);
    const bool hasEditions =
        is52 || version.dwMajorVersion == 6; // older and, on purpose, newer ones are "servers"
    OString edition;
    if (HasSuite(version, VER_SUITE_DATACENTER)) {
        edition = hasEditions ? L"Datacenter Edition" : L"Datacenter Server";
    } else if (HasSuite(version, VER_SUITE_ENTERPRISE)) {
        edition = hasEditions ? L"Enterprise Edition" : L"Advanced Server";
    } else if (is52 && version.wSuiteMask == VER_SUITE_BLADE) { // the whole mask, on purpose
        edition = L"Web Edition";
    } else {
        edition = hasEditions ? L"Standard Edition" : L"Server";
    }
    if (is52 && metric(SM_SERVERR2)) {
        edition.Append(L"R2"); // without a blank, on purpose
    }
    return edition;
}

} // namespace

OString NameOfSystem(const OSVERSIONINFOEXW& version) {
    const auto* const row = std::find_if(std::begin(kNames), std::end(kNames), [&](const NameRow& candidate) {
        return Matches(candidate, version);
    });
    if (row != std::end(kNames)) {
        return row->name;
    }
    OString name;
    name.Format(L"Windows %u.%u", version.dwMajorVersion, version.dwMinorVersion);
    return name;
}

OString EditionOfSystem(const OSVERSIONINFOEXW& version, decltype(&::GetSystemMetrics) metric) {
    switch (version.wProductType) {
    case VER_NT_WORKSTATION: return WorkstationEdition(version, metric);
    case VER_NT_DOMAIN_CONTROLLER:
    case VER_NT_SERVER: return ServerEdition(version, metric);
    default: return {};
    }
}

OString BuildTextOfSystem(const OSVERSIONINFOEXW& version) {
    OString text;
    text.Format(L"Build %d", LOWORD(version.dwBuildNumber));
    if (version.szCSDVersion[0] != 0) {
        text = text + L" (" + version.szCSDVersion + L")";
    }
    return text;
}

const OperatingSystem& TheOperatingSystem() {
    static OperatingSystem& record = *new OperatingSystem;
    static OCriticalSection& lock = *new OCriticalSection;
    if (record.filled) {
        return record;
    }
    const OScopedLock hold(lock);
    if (record.filled) {
        return record;
    }
    const OCore::SystemCalls& calls = OCore::TheSystemCalls();
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (!calls.getVersionEx(reinterpret_cast<OSVERSIONINFOW*>(&version))) {
        return record;
    }
    record.major = version.dwMajorVersion;
    record.minor = version.dwMinorVersion;
    record.name = NameOfSystem(version);
    record.edition = EditionOfSystem(version, calls.getSystemMetrics);
    record.servicePackText = version.szCSDVersion;
    record.buildText = BuildTextOfSystem(version);
    record.servicePack = version.wServicePackMajor;
    record.platform = version.dwPlatformId;
    record.productType = version.wProductType;
    for (const OString* const text :
         {&record.name, &record.edition, &record.servicePackText, &record.buildText}) {
        text->MakeBothForms();
    }
    record.filled = true;
    return record;
}

} // namespace kemba
