// The one seam to those platform calls whose answers a test must choose.
#pragma once

#include <windows.h>
#include <winspool.h>

namespace OCore {

/// The spooler's call by its ordinal; null where the spooler library lacks it. The library is loaded here and
/// not before: it takes longer to load than all others together, and not every command needs it.
decltype(&::GetDefaultPrinterW) FindGetDefaultPrinter();

/// The calls, each the platform's own. Tests put others in their place; the program never does.
struct SystemCalls {
    decltype(&::GetTickCount64) getTickCount64 = &::GetTickCount64;
    decltype(&::GetVersionExW) getVersionEx = &::GetVersionExW;
    decltype(&::GetSystemMetrics) getSystemMetrics = &::GetSystemMetrics;
    decltype(&::GetProfileStringW) getProfileString = &::GetProfileStringW;
    decltype(&::LCMapStringW) lcMapString = &::LCMapStringW;
    decltype(&::DeregisterEventSource) deregisterEventSource = &::DeregisterEventSource;
    decltype(&::EnumPrintersW) enumPrinters = &::EnumPrintersW;
    decltype(&FindGetDefaultPrinter) findGetDefaultPrinter = &FindGetDefaultPrinter;
};

/// The calls in force.
SystemCalls& TheSystemCalls();

} // namespace OCore
