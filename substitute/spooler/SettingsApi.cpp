// The system's spooler behind the settings' seam.
#include "substitute/spooler/SettingsApi.h"

#include <winspool.h>

#include <cstddef>
#include <cstring>

#include "substitute/spooler/SettingsBuffer.h"
#include "substitute/spooler/SettingsDefaults.h"

namespace kemba::substitute {
namespace {

/// Drivers may read what a device mode's fields promise, beyond its end: zeros stand there.
constexpr std::size_t kModeMargin = 4096;

/// The device mode inside a record, cut to its own size; nothing when there is none.
std::optional<Bytes> ModeInRecord(const Bytes& record, const DEVMODEW* mode) {
    const auto* const begin = reinterpret_cast<const BYTE*>(mode);
    if (begin < record.data() || begin >= record.data() + record.size()) {
        return std::nullopt;
    }
    Bytes bytes(begin, record.data() + record.size());
    bytes.resize(ModeSize(bytes));
    return bytes.empty() ? std::nullopt : std::optional<Bytes>(std::move(bytes));
}

/// Version of a program file; 0 when it has none. Asked of the driver's file because some systems leave the
/// version in the driver's record unset.
std::uint64_t FileVersion(const wchar_t* path) {
    Bytes block(GetFileVersionInfoSizeW(path, nullptr));
    void* found = nullptr;
    UINT size = 0;
    if (block.empty() || !GetFileVersionInfoW(path, 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO)) {
        return 0;
    }
    const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::uint64_t{version.dwFileVersionMS} << 32 | version.dwFileVersionLS;
}

/// A call that not every system exports.
FARPROC FindSpoolerCall(const char* name) {
    const HMODULE library = GetModuleHandleW(L"winspool.drv");
    return library ? GetProcAddress(library, name) : nullptr;
}

} // namespace

DWORD WindowsSettingsApi::Open(const std::wstring& name, DWORD rights, HANDLE& handle) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, rights};
    return SettingsErrorOf(OpenPrinterW(const_cast<wchar_t*>(name.c_str()), &handle, &defaults));
}

void WindowsSettingsApi::Close(HANDLE handle) {
    ClosePrinter(handle);
}

DWORD WindowsSettingsApi::GetDriver(HANDLE handle, DriverIdentity& driver) {
    Bytes record;
    const DWORD error = ReadDriverRecord(handle, 2, record);
    if (error == ERROR_SUCCESS) {
        const auto& information = *reinterpret_cast<const DRIVER_INFO_2W*>(record.data());
        driver.name = information.pName ? information.pName : L"";
        driver.version = information.pDriverPath ? FileVersion(information.pDriverPath) : 0;
    }
    return error;
}

DWORD WindowsSettingsApi::GetMode(HANDLE handle, ModeLevel level, std::optional<Bytes>& mode) {
    Bytes record;
    const DWORD error = ReadPrinterRecord(handle, static_cast<DWORD>(level), record);
    if (error == ERROR_SUCCESS) {
        // The records of both levels are this one pointer.
        mode = ModeInRecord(record, reinterpret_cast<const PRINTER_INFO_8W*>(record.data())->pDevMode);
    }
    return error;
}

DWORD WindowsSettingsApi::SetMode(HANDLE handle, ModeLevel level, const std::optional<Bytes>& mode) {
    Bytes copy = mode.value_or(Bytes());
    PRINTER_INFO_8W information = {mode ? reinterpret_cast<DEVMODEW*>(copy.data()) : nullptr};
    return SettingsErrorOf(
        SetPrinterW(handle, static_cast<DWORD>(level), reinterpret_cast<BYTE*>(&information), 0));
}

DWORD WindowsSettingsApi::MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode,
                                    Bytes& merged) {
    auto* const device = const_cast<wchar_t*>(name.c_str());
    const LONG size = DocumentPropertiesW(nullptr, handle, device, nullptr, nullptr, 0);
    if (size <= 0) {
        return SettingsErrorOf(FALSE);
    }
    Bytes input = mode;
    input.resize(input.size() + kModeMargin);
    merged.assign(static_cast<std::size_t>(size) + kModeMargin, 0);
    if (DocumentPropertiesW(nullptr, handle, device, reinterpret_cast<DEVMODEW*>(merged.data()),
                            reinterpret_cast<DEVMODEW*>(input.data()),
                            DM_IN_BUFFER | DM_OUT_BUFFER) != IDOK) {
        return SettingsErrorOf(FALSE);
    }
    merged.resize(static_cast<std::size_t>(size));
    merged.resize(ModeSize(merged));
    return merged.empty() ? ERROR_INVALID_DATA : ERROR_SUCCESS;
}

DWORD WindowsSettingsApi::GetDefaultMode(HANDLE handle, const std::wstring& name, Bytes& mode) {
    std::optional<Bytes> found;
    DWORD error = AskDriverForDefaultMode(handle, name, found);
    if (error == ERROR_CALL_NOT_IMPLEMENTED) {
        error = AskFreshPrinterForMode(*this, handle, found);
    }
    if (error == ERROR_SUCCESS) {
        mode = found.value_or(Bytes());
        return mode.empty() ? ERROR_INVALID_DATA : ERROR_SUCCESS;
    }
    return error;
}

DWORD WindowsSettingsApi::GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) {
    Bytes list;
    const DWORD error = FillBuffer(list, [&](BYTE* buffer, DWORD size, DWORD& needed) {
        return EnumPrinterKeyW(handle, key.c_str(), reinterpret_cast<wchar_t*>(buffer), size, &needed);
    });
    if (error != ERROR_SUCCESS) {
        return error;
    }
    std::wstring texts(list.size() / sizeof(wchar_t), L'\0');
    std::memcpy(texts.data(), list.data(), texts.size() * sizeof(wchar_t));
    for (std::size_t begin = 0; begin < texts.size() && texts[begin] != L'\0';) {
        names.emplace_back(texts.c_str() + begin);
        begin += names.back().size() + 1;
    }
    return ERROR_SUCCESS;
}

DWORD WindowsSettingsApi::GetValues(HANDLE handle, const std::wstring& key,
                                    std::vector<PrinterValue>& values) {
    Bytes record;
    DWORD count = 0;
    const DWORD error = FillBuffer(record, [&](BYTE* buffer, DWORD size, DWORD& needed) {
        return EnumPrinterDataExW(handle, key.c_str(), buffer, size, &needed, &count);
    });
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const auto* const found = reinterpret_cast<const PRINTER_ENUM_VALUESW*>(record.data());
    for (DWORD index = 0; index < count; ++index) {
        const PRINTER_ENUM_VALUESW& value = found[index];
        values.push_back({key, value.pValueName ? value.pValueName : L"", value.dwType,
                          value.pData ? Bytes(value.pData, value.pData + value.cbData) : Bytes()});
    }
    return ERROR_SUCCESS;
}

DWORD WindowsSettingsApi::SetValue(HANDLE handle, const PrinterValue& value) {
    BYTE nothing = 0; // empty data needs an address too
    auto* const data = value.data.empty() ? &nothing : const_cast<BYTE*>(value.data.data());
    return SetPrinterDataExW(handle, value.key.c_str(), value.name.c_str(), value.type, data,
                             static_cast<DWORD>(value.data.size()));
}

DWORD WindowsSettingsApi::DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) {
    const DWORD error = DeletePrinterDataExW(handle, key.c_str(), name.c_str());
    // Wine has the call, but it refuses whatever it is given.
    return error == ERROR_INVALID_PARAMETER ? ERROR_CALL_NOT_IMPLEMENTED : error;
}

DWORD WindowsSettingsApi::DeleteKey(HANDLE handle, const std::wstring& key) {
    using Call = DWORD(WINAPI*)(HANDLE, const wchar_t*);
    const auto call = reinterpret_cast<Call>(reinterpret_cast<void*>(FindSpoolerCall("DeletePrinterKeyW")));
    return call ? call(handle, key.c_str()) : ERROR_CALL_NOT_IMPLEMENTED;
}

} // namespace kemba::substitute
