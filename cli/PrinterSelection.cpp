// Printer selection over the print spooler.
#include "cli/PrinterSelection.h"

#include <windows.h>
#include <winspool.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/ApplicationSettings.h"
#include "core/Handles.h"
#include "core/OArray.h"
#include "core/SystemCalls.h"
#include "messages/ConsoleOutput.h"

namespace kemba {
namespace {

/// A spooler enumeration of one level: the buffer, and the entries that stand in it.
template<class Entry>
class PrinterList {
  public:
    /// Makes the sizing call, and the real one if `wanted` says so of the sizing call's failure.
    template<class Wanted>
    PrinterList(DWORD flags, DWORD level, Wanted wanted) {
        const auto enumPrinters = OCore::TheSystemCalls().enumPrinters;
        DWORD needed = 0;
        DWORD count = 0;
        if (enumPrinters(flags, nullptr, level, nullptr, 0, &needed, &count) || !wanted(GetLastError())) {
            return;
        }
        m_buffer.resize(needed);
        auto* const bytes = reinterpret_cast<BYTE*>(m_buffer.data());
        if (enumPrinters(flags, nullptr, level, bytes, needed, &needed, &count)) {
            m_count = count;
        }
    }

    const Entry* begin() const { return reinterpret_cast<const Entry*>(m_buffer.data()); }
    const Entry* end() const { return begin() + m_count; }

  private:
    std::vector<std::byte> m_buffer;
    DWORD m_count = 0;
};

void AppendAllPrinters(OStringArray& names) {
    const auto anyFailure = [](DWORD) { return true; };
    const PrinterList<PRINTER_INFO_1W> printers(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, 1, anyFailure);
    for (const PRINTER_INFO_1W& printer : printers) {
        OCore::RequireMemory(names.Append(printer.pName));
    }
}

bool PrinterExists(const OString& name) {
    PRINTER_DEFAULTSW use{nullptr, nullptr, PRINTER_ACCESS_USE};
    HANDLE printer = nullptr;
    std::wstring writable = name.Wide();
    return OpenPrinterW(writable.data(), &printer, &use) && OCore::UniquePrinter(printer);
}

bool IsInsufficientBuffer(DWORD error) {
    return error == ERROR_INSUFFICIENT_BUFFER;
}

OString DefaultPrinterFromSpooler() {
    const auto getDefaultPrinter = OCore::TheSystemCalls().findGetDefaultPrinter();
    DWORD characters = 0;
    if (!getDefaultPrinter || getDefaultPrinter(nullptr, &characters) ||
        !IsInsufficientBuffer(GetLastError())) {
        return {};
    }
    std::wstring name(characters, L'\0');
    return getDefaultPrinter(name.data(), &characters) ? OString(name.c_str()) : OString();
}

OString DefaultPrinterFromProfile() {
    constexpr DWORD kCharacters = 260;
    wchar_t device[kCharacters];
    if (OCore::TheSystemCalls().getProfileString(L"windows", L"device", L"", device, kCharacters) == 0) {
        return {};
    }
    const std::wstring_view text = device;
    return OString(std::wstring(text.substr(0, text.find(L','))).c_str());
}

OString DefaultPrinterFromEnumeration() {
    const PrinterList<PRINTER_INFO_5W> printers(PRINTER_ENUM_DEFAULT, 5, IsInsufficientBuffer);
    return printers.begin() == printers.end() ? OString() : OString(printers.begin()->pPrinterName);
}

} // namespace

bool SelectPrinters(const ApplicationSettings& settings, OStringArray& names, ConsoleOutput& console) {
    names.RemoveAll();
    if (settings.allPrinters) {
        AppendAllPrinters(names);
    } else if (settings.printerNames.GetSize() > 0) {
        for (const OString& name : settings.printerNames) {
            if (PrinterExists(name)) {
                OCore::RequireMemory(names.Append(name));
            } else {
                console.PrintMessage("error:PrinterNotFound", name);
            }
        }
    } else if (const OString name = DefaultPrinterName(); !name.IsEmpty()) {
        OCore::RequireMemory(names.Append(name));
    }
    if (names.GetSize() == 0) {
        console.PrintMessage("error:NoPrinterSelected");
        return false;
    }
    return true;
}

OString DefaultPrinterName() {
    constexpr DWORD kFirstWithDefaultPrinterCall = 5;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    OCore::TheSystemCalls().getVersionEx(&version);
    switch (version.dwPlatformId) {
    case VER_PLATFORM_WIN32_NT:
        return version.dwMajorVersion >= kFirstWithDefaultPrinterCall ? DefaultPrinterFromSpooler()
                                                                      : DefaultPrinterFromProfile();
    case VER_PLATFORM_WIN32_WINDOWS: return DefaultPrinterFromEnumeration();
    default: return {};
    }
}

} // namespace kemba
