// The system's own spooler behind the seam.
#include "substitute/spooler/WindowsSpooler.h"

#include <wtsapi32.h>

#include <cstring>
#include <cwchar>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/Handles.h"
#include "core/SystemLibraries.h"
#include "substitute/base/Apartment.h"
#include "substitute/base/Bytes.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/FillBuffer.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {
namespace {

/// Drivers may read what a device mode's fields promise, beyond its end, and write before they look at the
/// size: zeros stand there.
constexpr std::size_t kModeMargin = 4096;
constexpr DWORD kDriverDefault = 4; // CDM_DRIVER_DEFAULT of the driver kit

/// The error of a call that has just given `succeeded`; a failure is never taken for success.
DWORD ErrorOf(BOOL succeeded) {
    if (succeeded) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

/// A text for a call that asks for one that could be changed, and does not change it.
wchar_t* Unchanged(const std::wstring& text) {
    return const_cast<wchar_t*>(text.c_str());
}

/// Cuts a device mode to its own size; ERROR_INVALID_DATA when it is none.
DWORD CutMode(Bytes& mode) {
    mode.resize(ModeSize(mode));
    return mode.empty() ? ERROR_INVALID_DATA : ERROR_SUCCESS;
}

/// A function that not every system exports; null where it does not. The library is in memory already.
template<class Call>
Call FindCall(const wchar_t* library, const char* name) {
    const HMODULE module = GetModuleHandleW(library);
    return module ? reinterpret_cast<Call>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

using DeleteKeyCall = DWORD(WINAPI*)(HANDLE, const wchar_t*);

DeleteKeyCall FindDeleteKey() {
    return FindCall<DeleteKeyCall>(L"winspool.drv", "DeletePrinterKeyW");
}

/// Full path of a file in the system's folder; empty when the folder is not to be had.
std::wstring InSystemFolder(const wchar_t* name) {
    wchar_t folder[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(folder, static_cast<UINT>(std::size(folder)));
    return length == 0 || length >= std::size(folder) ? std::wstring() : std::wstring(folder) + L"\\" + name;
}

/// Whether somebody is connected to this process's session. What the system does not tell counts as yes.
bool IsSessionActive() {
    const HMODULE sessions = OCore::LoadSystemLibrary("wtsapi32.dll");
    if (!sessions) {
        return true;
    }
    using Query = decltype(&WTSQuerySessionInformationW);
    using Free = decltype(&WTSFreeMemory);
    const auto find = [&](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(sessions, name));
    };
    const auto query = reinterpret_cast<Query>(find("WTSQuerySessionInformationW"));
    const auto free = reinterpret_cast<Free>(find("WTSFreeMemory"));
    wchar_t* state = nullptr;
    DWORD size = 0;
    if (!query || !free ||
        !query(WTS_CURRENT_SERVER_HANDLE, WTS_CURRENT_SESSION, WTSConnectState, &state, &size) || !state) {
        return true;
    }
    const std::unique_ptr<wchar_t, Free> owned(state, free);
    return size < sizeof(WTS_CONNECTSTATE_CLASS) ||
           *reinterpret_cast<WTS_CONNECTSTATE_CLASS*>(state) == WTSActive;
}

} // namespace

DWORD WindowsSpooler::Open(const std::wstring& name, DWORD access, HANDLE& handle) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    return ErrorOf(OpenPrinterW(Unchanged(name), &handle, &defaults));
}

void WindowsSpooler::Close(HANDLE handle) {
    ClosePrinter(handle);
}

DWORD WindowsSpooler::GetRecord(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return ErrorOf(GetPrinterW(handle, level, buffer, size, &needed));
}

DWORD WindowsSpooler::SetRecord(HANDLE handle, DWORD level, BYTE* record, DWORD command) {
    return ErrorOf(SetPrinterW(handle, level, record, command));
}

DWORD WindowsSpooler::Add(PRINTER_INFO_2W& record, HANDLE& handle) {
    handle = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&record));
    return ErrorOf(handle != nullptr);
}

DWORD WindowsSpooler::Delete(HANDLE handle) {
    return ErrorOf(::DeletePrinter(handle));
}

DWORD WindowsSpooler::GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return ErrorOf(GetPrinterDriverW(handle, nullptr, level, buffer, size, &needed));
}

DWORD WindowsSpooler::GetDriverFolder(std::wstring& folder) {
    Bytes path;
    const DWORD error = FillBuffer(path, [](BYTE* buffer, DWORD size, DWORD& needed) {
        return ErrorOf(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, buffer, size, &needed));
    });
    if (error == ERROR_SUCCESS) {
        folder.assign(path.size() / sizeof(wchar_t), L'\0');
        std::memcpy(folder.data(), path.data(), folder.size() * sizeof(wchar_t));
        folder.resize(std::wcslen(folder.c_str()));
    }
    return error;
}

DWORD WindowsSpooler::StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType,
                                    DWORD& job) {
    DOC_INFO_1W document = {};
    document.pDocName = Unchanged(name);
    document.pDatatype = const_cast<wchar_t*>(dataType); // likewise
    job = StartDocPrinterW(handle, 1, reinterpret_cast<BYTE*>(&document));
    return ErrorOf(job != 0);
}

DWORD WindowsSpooler::StartPage(HANDLE handle) {
    return ErrorOf(StartPagePrinter(handle));
}

DWORD WindowsSpooler::Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) {
    return ErrorOf(WritePrinter(handle, const_cast<void*>(bytes), size, &written)); // only read
}

DWORD WindowsSpooler::EndPage(HANDLE handle) {
    return ErrorOf(EndPagePrinter(handle));
}

DWORD WindowsSpooler::EndDocument(HANDLE handle) {
    return ErrorOf(EndDocPrinter(handle));
}

DWORD WindowsSpooler::AbortDocument(HANDLE handle) {
    return ErrorOf(AbortPrinter(handle));
}

DWORD WindowsSpooler::DeleteJob(HANDLE handle, DWORD job) {
    return ErrorOf(SetJobW(handle, job, 0, nullptr, JOB_CONTROL_DELETE));
}

DWORD WindowsSpooler::MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode, Bytes& merged) {
    const LONG size = DocumentPropertiesW(nullptr, handle, Unchanged(name), nullptr, nullptr, 0);
    if (size <= 0) {
        return ErrorOf(FALSE);
    }
    Bytes input = mode;
    input.resize(input.size() + kModeMargin);
    merged.assign(static_cast<std::size_t>(size) + kModeMargin, 0);
    if (DocumentPropertiesW(nullptr, handle, Unchanged(name), reinterpret_cast<DEVMODEW*>(merged.data()),
                            reinterpret_cast<DEVMODEW*>(input.data()),
                            DM_IN_BUFFER | DM_OUT_BUFFER) != IDOK) {
        return ErrorOf(FALSE);
    }
    merged.resize(static_cast<std::size_t>(size));
    return CutMode(merged);
}

DWORD WindowsSpooler::AskLibraryForMode(const std::wstring& library, const std::wstring& printer,
                                        Bytes& mode) {
    const OCore::UniqueLibrary loaded(
        LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!loaded) {
        return ErrorOf(FALSE);
    }
    using ConvertMode = BOOL(WINAPI*)(wchar_t*, DEVMODEW*, DEVMODEW*, LONG*, DWORD);
    const auto convert = reinterpret_cast<ConvertMode>(
        reinterpret_cast<void*>(GetProcAddress(loaded.get(), "DrvConvertDevMode")));
    if (!convert) {
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
    LONG needed = 0; // the first call only asks for the size, and fails
    convert(Unchanged(printer), nullptr, nullptr, &needed, kDriverDefault);
    if (needed <= 0) {
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
    mode.assign(static_cast<std::size_t>(needed) + kModeMargin, 0);
    if (!convert(Unchanged(printer), nullptr, reinterpret_cast<DEVMODEW*>(mode.data()), &needed,
                 kDriverDefault)) {
        return ErrorOf(FALSE);
    }
    return CutMode(mode);
}

DWORD WindowsSpooler::GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) {
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

DWORD WindowsSpooler::GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) {
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

DWORD WindowsSpooler::SetValue(HANDLE handle, const PrinterValue& value) {
    BYTE nothing = 0; // empty data needs an address too
    auto* const data = value.data.empty() ? &nothing : const_cast<BYTE*>(value.data.data());
    return SetPrinterDataExW(handle, value.key.c_str(), value.name.c_str(), value.type, data,
                             static_cast<DWORD>(value.data.size()));
}

DWORD WindowsSpooler::DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) {
    return RemovalError(DeletePrinterDataExW(handle, key.c_str(), name.c_str()), FindDeleteKey() != nullptr);
}

DWORD WindowsSpooler::DeleteKey(HANDLE handle, const std::wstring& key) {
    const DeleteKeyCall call = FindDeleteKey();
    return call ? call(handle, key.c_str()) : ERROR_CALL_NOT_IMPLEMENTED;
}

DWORD RemovalError(DWORD error, bool removesKeys) {
    return error == ERROR_INVALID_PARAMETER && !removesKeys ? ERROR_CALL_NOT_IMPLEMENTED : error;
}

Desktop WindowsSpooler::DescribeDesktop() {
    Desktop desktop;
    USEROBJECTFLAGS flags = {};
    desktop.visible =
        GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof(flags), nullptr) &&
        (flags.dwFlags & WSF_VISIBLE);
    if (!ProcessIdToSessionId(GetCurrentProcessId(), &desktop.session)) {
        desktop.session = 0;
    }
    desktop.sessionActive = IsSessionActive();
    return desktop;
}

DWORD WindowsSpooler::ShowProperties(HANDLE handle) {
    // Drivers' pages expect a single-threaded apartment, which none of the server's own threads has.
    DWORD error = ERROR_SUCCESS;
    std::thread([&] {
        const Apartment apartment(COINIT_APARTMENTTHREADED);
        error = ErrorOf(PrinterProperties(nullptr, handle));
    }).join();
    return error;
}

DWORD WindowsSpooler::ShowQueue(const std::wstring& printer) {
    const std::wstring program = InSystemFolder(L"rundll32.exe");
    if (program.empty()) {
        return ERROR_PATH_NOT_FOUND;
    }
    if (printer.find(L'"') != std::wstring::npos) {
        return ERROR_INVALID_PRINTER_NAME; // it would end the quotes below
    }
    std::wstring line = L"\"" + program + L"\" printui.dll,PrintUIEntry /o /n\"" + printer + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &started)) {
        return ErrorOf(FALSE);
    }
    const OCore::UniqueHandle thread(started.hThread);
    const OCore::UniqueHandle process(started.hProcess);
    // The window has a process of its own; one that ends at once with a failure has shown none.
    constexpr DWORD kPatience = 1'000; // milliseconds
    DWORD status = 0;
    const bool failed = WaitForSingleObject(process.get(), kPatience) == WAIT_OBJECT_0 &&
                        GetExitCodeProcess(process.get(), &status) && status != 0;
    return failed ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_SUCCESS;
}

} // namespace kemba::substitute
