// Asking the system about itself.
#include "tests/acceptance/Facts.h"

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "demo/LabelDriver.h"
#include "demo/Wine.h"
#include "tests/acceptance/Plan.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"

namespace acceptance {
namespace {

constexpr wchar_t kVersionKey[] = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr unsigned kFirstBuildOf11 = 22'000;

std::string RegistryText(const wchar_t* name) {
    wchar_t text[256] = {};
    DWORD size = sizeof text;
    RegGetValueW(HKEY_LOCAL_MACHINE, kVersionKey, name, RRF_RT_REG_SZ, nullptr, text, &size);
    return kit::Narrow(text);
}

/// Without regard to what a manifest allows a program to know.
SystemVersion AskVersion() {
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    SystemVersion version{RegistryText(L"ProductName"), RegistryText(L"DisplayVersion")};
    OSVERSIONINFOW numbers{};
    numbers.dwOSVersionInfoSize = sizeof numbers;
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (address && reinterpret_cast<GetVersion>(reinterpret_cast<void*>(address))(&numbers) == 0) {
        version.major = numbers.dwMajorVersion;
        version.minor = numbers.dwMinorVersion;
        version.build = numbers.dwBuildNumber;
    }
    DWORD revision = 0;
    DWORD size = sizeof revision;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kVersionKey, L"UBR", RRF_RT_REG_DWORD, nullptr, &revision, &size) ==
        ERROR_SUCCESS) {
        version.revision = revision;
    }
    return version;
}

bool IsElevated() {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) {
        return false;
    }
    const kit::UniqueHandle token(opened);
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    return GetTokenInformation(token.get(), TokenElevation, &elevation, sizeof elevation, &size) &&
           elevation.TokenIsElevated != 0;
}

std::string Now() {
    SYSTEMTIME time{};
    GetLocalTime(&time);
    TIME_ZONE_INFORMATION zone{};
    const DWORD kind = GetTimeZoneInformation(&zone);
    const long west = zone.Bias + (kind == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : 0);
    char text[80];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u, %ld minutes east of UTC", time.wYear,
                  time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, -west);
    return text;
}

/// The version in a program's file.
std::string FileVersion(const std::wstring& path) {
    DWORD ignored = 0;
    std::vector<BYTE> bytes(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT size = 0;
    if (bytes.empty() ||
        !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(bytes.size()), bytes.data()) ||
        !VerQueryValueW(bytes.data(), L"\\", reinterpret_cast<void**>(&fixed), &size)) {
        return "without a version";
    }
    return std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(fixed->dwFileVersionLS)) + "." +
           std::to_string(LOWORD(fixed->dwFileVersionLS));
}

/// Its own line about the system.
std::string WhatKembaSays(const std::wstring& folder) {
    const kit::ProcessResult run = kit::RunProgram(folder + L"\\kemba.exe", {L"version", L"os"});
    return run.output.substr(0, run.output.find('\r'));
}

std::string Locale() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH);
    return kit::Narrow(name);
}

} // namespace

std::string VersionLine(const SystemVersion& version) {
    std::string product = version.product.empty() ? "Windows" : version.product;
    if (version.build >= kFirstBuildOf11 && product.starts_with("Windows 10")) {
        product.replace(0, 10, "Windows 11");
    }
    const std::string numbers = std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
                                std::to_string(version.build) + "." + std::to_string(version.revision);
    return product + (version.release.empty() ? "" : " " + version.release) + ", " + numbers;
}

Machine DescribeMachine() {
    return {demo::IsWine(), IsElevated(), GetACP()};
}

std::vector<std::string> DescribeRun(const Machine& machine, const std::wstring& folder) {
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    return {
        "Acceptance of kemba",
        "date        " + Now(),
        "system      " + VersionLine(AskVersion()),
        machine.isWine ? "Wine        " + demo::WineVersion() + ", so this is not Windows" : "Wine        no",
        "code pages  ANSI " + std::to_string(machine.codePage) + ", OEM " + std::to_string(GetOEMCP()) +
            ", console " + std::to_string(GetConsoleOutputCP()) + "; locale " + Locale(),
        std::string("rights      ") + (machine.isAdministrator ? "administrator" : "not elevated") +
            ", session " + std::to_string(session),
        "programs    kemba.exe " + FileVersion(folder + L"\\kemba.exe") + ", kemba-dal.exe " +
            FileVersion(folder + L"\\kemba-dal.exe"),
        "kemba says  " + WhatKembaSays(folder),
        "printers    driver \"" + kit::Narrow(demo::LabelDriverName()) + "\"",
        machine.isWine ? "tests       the quick ones, in which Wine's lacks show"
                       : "tests       all that can be run",
    };
}

} // namespace acceptance
