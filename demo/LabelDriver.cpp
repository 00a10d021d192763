// Installation of the label printers' driver.
#include "demo/LabelDriver.h"

#include "demo/SpoolerError.h"
#include "demo/SpoolerLock.h"

#include <windows.h>

#include <winspool.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace demo {
namespace {

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

bool IsInstalled() {
    DWORD size = 0;
    DWORD count = 0;
    EnumPrinterDriversW(nullptr, nullptr, 1, nullptr, 0, &size, &count);
    std::string buffer(size, '\0');
    if (!EnumPrinterDriversW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(buffer.data()), size, &size,
                             &count))
        return false;
    const auto* const drivers = reinterpret_cast<const DRIVER_INFO_1W*>(buffer.data());
    for (DWORD i = 0; i < count; ++i) {
        if (std::wstring_view(drivers[i].pName) == kLabelDriver)
            return true;
    }
    return false;
}

std::wstring WriteDescription() {
    wchar_t folder[MAX_PATH];
    GetWindowsDirectoryW(folder, MAX_PATH);
    std::wstring path = std::wstring(folder) + L"\\inf\\docklabl.ppd";
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    file << kDescription;
    if (!file.flush())
        throw SpoolerError("writing the printer description", GetLastError());
    return path;
}

} // namespace

void InstallLabelDriver() {
    const SpoolerLock lock(L"kemba label driver");
    if (IsInstalled())
        return;
    std::wstring name = kLabelDriver;
    std::wstring description = WriteDescription();
    std::wstring driver = L"wineps.drv";
    DRIVER_INFO_3W info{};
    info.cVersion = 3;
    info.pName = name.data();
    info.pDriverPath = driver.data();
    info.pDataFile = description.data();
    info.pConfigFile = driver.data();
    if (!AddPrinterDriverW(nullptr, 3, reinterpret_cast<BYTE*>(&info)))
        throw SpoolerError("AddPrinterDriver", GetLastError());
}

} // namespace demo
