// Binding of the platform calls behind the seam.
#include "core/SystemCalls.h"

#include "core/SystemLibraries.h"

namespace OCore {
namespace {

/// `GetDefaultPrinterW` came with version 5 of the system; its ordinal is older than its name.
constexpr WORD kGetDefaultPrinterOrdinal = 203;

} // namespace

decltype(&::GetDefaultPrinterW) FindGetDefaultPrinter() {
    const HMODULE spooler = LoadSystemLibrary("winspool.drv");
    auto* const address =
        reinterpret_cast<void*>(GetProcAddress(spooler, MAKEINTRESOURCEA(kGetDefaultPrinterOrdinal)));
    return reinterpret_cast<decltype(&::GetDefaultPrinterW)>(address);
}

SystemCalls& TheSystemCalls() {
    static SystemCalls calls;
    return calls;
}

} // namespace OCore
