// Installation of the label printers' driver.
#include "demo/LabelDriver.h"

#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ios>
#include <string>
#include <string_view>
#include <vector>

#include "demo/Made.h"
#include "demo/SpoolerError.h"
#include "demo/SpoolerLock.h"
#include "demo/Wine.h"

namespace demo {
namespace {

constexpr wchar_t kWineDriver[] = L"Dock Label Printer";
constexpr wchar_t kWindowsDriver[] = L"Generic / Text Only";
constexpr DWORD kDriverVersion = 3; // user-mode drivers

/// Wine's driver gives no settings for a printer without a description.
constexpr char kDescription[] = R"PPD(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "DOCKLABL.PPD"
*Manufacturer: "Dock"
*Product: "(Dock Label Printer)"
*PSVersion: "(3010.000) 0"
*ModelName: "Dock Label Printer"
*ShortNickName: "Dock Label Printer"
*NickName: "Dock Label Printer"
*LanguageLevel: "3"
*ColorDevice: False
*DefaultColorSpace: Gray
*FileSystem: False
*TTRasterizer: Type42
*DefaultResolution: 203dpi
*OpenUI *PageSize: PickOne
*OrderDependency: 10 AnySetup *PageSize
*DefaultPageSize: Label
*PageSize Label/Label 4 x 6 in: "<</PageSize[288 432]>>setpagedevice"
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*OrderDependency: 10 AnySetup *PageRegion
*DefaultPageRegion: Label
*PageRegion Label/Label 4 x 6 in: "<</PageSize[288 432]>>setpagedevice"
*CloseUI: *PageRegion
*DefaultImageableArea: Label
*ImageableArea Label/Label 4 x 6 in: "0 0 288 432"
*DefaultPaperDimension: Label
*PaperDimension Label/Label 4 x 6 in: "288 432"
*DefaultFont: Courier
*Font Courier: Standard "(001.000)" Standard ROM
)PPD";

/// The folder from which the spooler takes the files of drivers of our kind.
std::filesystem::path DriverFolder() {
    wchar_t folder[MAX_PATH];
    DWORD size = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder), sizeof folder,
                                    &size)) {
        throw SpoolerError("GetPrinterDriverDirectory", GetLastError());
    }
    return std::filesystem::path(folder) / std::to_wstring(kDriverVersion);
}

void WriteDescription(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    file << kDescription;
    if (!file.flush()) {
        throw SpoolerError("writing the printer description", GetLastError());
    }
}

void InstallOnWine() {
    std::wstring description = L"docklabl.ppd";
    const std::filesystem::path path = DriverFolder() / description;
    if (std::filesystem::exists(path) && IsDriverInstalled(kWineDriver)) {
        return;
    }
    // Wine's spooler copies no files: the description has to be in its place.
    WriteDescription(path);
    std::wstring name = kWineDriver;
    std::wstring driver = L"wineps.drv";
    DRIVER_INFO_3W info{};
    info.cVersion = kDriverVersion;
    info.pName = name.data();
    info.pDriverPath = driver.data();
    info.pDataFile = description.data();
    info.pConfigFile = driver.data();
    if (!AddPrinterDriverW(nullptr, 3, reinterpret_cast<BYTE*>(&info))) {
        throw SpoolerError("AddPrinterDriver", GetLastError());
    }
}

/// Out of the drivers that come with Windows, which is what no path says. Wine's library does not have the
/// call.
void InstallOnWindows() {
    using Install = HRESULT(WINAPI*)(const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*, DWORD);
    if (IsDriverInstalled(kWindowsDriver)) {
        return;
    }
    const FARPROC address =
        GetProcAddress(GetModuleHandleW(L"winspool.drv"), "InstallPrinterDriverFromPackageW");
    if (!address) {
        throw SpoolerError("InstallPrinterDriverFromPackage", ERROR_CALL_NOT_IMPLEMENTED);
    }
    RememberMade(kMadeDriver, kWindowsDriver);
    const HRESULT status = reinterpret_cast<Install>(reinterpret_cast<void*>(address))(
        nullptr, nullptr, kWindowsDriver, nullptr, 0);
    if (FAILED(status)) {
        throw SpoolerError("InstallPrinterDriverFromPackage", static_cast<DWORD>(status));
    }
}

} // namespace

const wchar_t* LabelDriverName() {
    return IsWine() ? kWineDriver : kWindowsDriver;
}

void InstallLabelDriver() {
    const SpoolerLock lock(L"kemba label driver");
    IsWine() ? InstallOnWine() : InstallOnWindows();
}

bool IsDriverInstalled(const wchar_t* name) {
    DWORD size = 0;
    DWORD count = 0;
    EnumPrinterDriversW(nullptr, nullptr, 1, nullptr, 0, &size, &count);
    std::vector<BYTE> buffer(size);
    if (!EnumPrinterDriversW(nullptr, nullptr, 1, buffer.data(), size, &size, &count)) {
        return false;
    }
    const auto* const drivers = reinterpret_cast<const DRIVER_INFO_1W*>(buffer.data());
    return std::any_of(drivers, drivers + count, [name](const DRIVER_INFO_1W& driver) {
        return std::wstring_view(driver.pName) == name;
    });
}

bool RemoveDriver(const wchar_t* name) {
    std::wstring driver = name;
    return !IsDriverInstalled(name) || DeletePrinterDriverW(nullptr, nullptr, driver.data());
}

} // namespace demo
