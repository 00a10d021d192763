// Two ways to a driver's default device mode.
#include "substitute/spooler/SettingsDefaults.h"

#include <winspool.h>

#include <atomic>
#include <memory>

#include "substitute/base/Handles.h"
#include "substitute/spooler/SettingsBuffer.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kDriverDefault = 4;       // CDM_DRIVER_DEFAULT of the driver kit
constexpr DWORD kHiddenPrinter = 0x20;    // PRINTER_ATTRIBUTE_HIDDEN
constexpr std::size_t kModeMargin = 4096; // for drivers that write before they look at the size

using ConvertMode = BOOL(WINAPI*)(wchar_t*, DEVMODEW*, DEVMODEW*, LONG*, DWORD);

/// Takes its printer away again in the end.
struct PrinterRemover {
    void operator()(void* printer) const noexcept {
        DeletePrinter(printer);
        ClosePrinter(printer);
    }
};

std::wstring FreshPrinterName() {
    static std::atomic<int> made{0};
    return L"kemba defaults " + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made);
}

} // namespace

DWORD AskLibraryForDefaultMode(const std::wstring& library, const std::wstring& printer,
                               std::optional<Bytes>& mode) {
    const UniqueLibrary loaded(LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!loaded) {
        return SettingsErrorOf(FALSE);
    }
    const auto convert = reinterpret_cast<ConvertMode>(
        reinterpret_cast<void*>(GetProcAddress(loaded.get(), "DrvConvertDevMode")));
    if (!convert) {
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
    auto* const name = const_cast<wchar_t*>(printer.c_str());
    LONG needed = 0; // the first call only asks for the size, and fails
    convert(name, nullptr, nullptr, &needed, kDriverDefault);
    if (needed <= 0) {
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
    Bytes buffer(static_cast<std::size_t>(needed) + kModeMargin);
    if (!convert(name, nullptr, reinterpret_cast<DEVMODEW*>(buffer.data()), &needed, kDriverDefault)) {
        return SettingsErrorOf(FALSE);
    }
    buffer.resize(ModeSize(buffer));
    mode = std::move(buffer);
    return ERROR_SUCCESS;
}

DWORD AskDriverForDefaultMode(HANDLE handle, const std::wstring& printer, std::optional<Bytes>& mode) {
    Bytes record;
    const DWORD error = ReadDriverRecord(handle, 2, record);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const wchar_t* const library = reinterpret_cast<const DRIVER_INFO_2W*>(record.data())->pConfigFile;
    return library && *library ? AskLibraryForDefaultMode(library, printer, mode)
                               : ERROR_CALL_NOT_IMPLEMENTED;
}

DWORD AskFreshPrinterForMode(SettingsApi& api, HANDLE handle, std::optional<Bytes>& mode) {
    Bytes record;
    const DWORD error = ReadPrinterRecord(handle, 2, record);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    std::wstring name = FreshPrinterName();
    PRINTER_INFO_2W fresh = {};
    const auto& model = *reinterpret_cast<const PRINTER_INFO_2W*>(record.data());
    fresh.pPrinterName = name.data();
    fresh.pPortName = model.pPortName;
    fresh.pDriverName = model.pDriverName;
    fresh.pPrintProcessor = model.pPrintProcessor;
    fresh.pDatatype = model.pDatatype;
    fresh.Attributes = kHiddenPrinter;
    const std::unique_ptr<void, PrinterRemover> printer(
        AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&fresh)));
    return printer ? api.GetMode(printer.get(), ModeLevel::Global, mode) : SettingsErrorOf(FALSE);
}

} // namespace kemba::substitute
