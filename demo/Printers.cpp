// Printers on the spooler.
#include "demo/Printers.h"

#include <winspool.h>

#include <atomic>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/Handles.h"
#include "demo/FilePort.h"
#include "demo/LabelDriver.h"
#include "demo/Made.h"
#include "demo/SpoolerError.h"

namespace demo {
namespace {

constexpr wchar_t kProfileSection[] = L"windows";
constexpr wchar_t kProfileDevice[] = L"device"; // holds the default printer

/// A string that the spooler takes as one to change, though it never does; null for an empty one.
wchar_t* Optional(std::wstring& text) {
    return text.empty() ? nullptr : text.data();
}

OCore::UniquePrinter Open(const std::wstring& name, DWORD access) {
    std::wstring changeable = name;
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
    HANDLE printer = nullptr;
    return OCore::UniquePrinter(OpenPrinterW(changeable.data(), &printer, &defaults) ? printer : nullptr);
}

std::wstring PortOf(HANDLE printer) {
    DWORD size = 0;
    GetPrinterW(printer, 2, nullptr, 0, &size);
    std::vector<BYTE> buffer(size);
    if (!GetPrinterW(printer, 2, buffer.data(), size, &size)) {
        return {};
    }
    return reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data())->pPortName;
}

} // namespace

void MakePrinter(const std::wstring& name, const PrinterSettings& settings) {
    // Wine's spooler would take a second one of the same name.
    if (PrinterExists(name)) {
        throw SpoolerError("AddPrinter", ERROR_PRINTER_ALREADY_EXISTS);
    }
    InstallLabelDriver();
    if (IsFilePort(settings.port)) {
        MakeFilePort(settings.port);
    }
    RememberMade(kMadePrinter, name);
    std::wstring printerName = name;
    PrinterSettings texts = settings;
    std::wstring driver = LabelDriverName();
    std::wstring processor = L"WinPrint";
    std::wstring datatype = L"RAW";
    PRINTER_INFO_2W info{};
    info.pPrinterName = printerName.data();
    info.pShareName = Optional(texts.shareName);
    info.pPortName = texts.port.data();
    info.pDriverName = driver.data();
    info.pComment = Optional(texts.comment);
    info.pLocation = Optional(texts.location);
    info.pPrintProcessor = processor.data();
    info.pDatatype = datatype.data();
    info.Attributes = settings.attributes | (settings.shareName.empty() ? 0 : PRINTER_ATTRIBUTE_SHARED);
    if (!OCore::UniquePrinter(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info)))) {
        throw SpoolerError("AddPrinter", GetLastError());
    }
}

void RemovePrinter(const std::wstring& name) {
    std::wstring port;
    if (const auto printer = Open(name, PRINTER_ALL_ACCESS)) {
        port = PortOf(printer.get());
        // Windows keeps a printer until its last job has gone, and one that is paused lets none go.
        SetPrinterW(printer.get(), 0, nullptr, PRINTER_CONTROL_PURGE);
        DeletePrinter(printer.get());
    }
    // The spooler lets go of a port some time after its last printer.
    for (int tenths = 0; IsFilePort(port) && !RemoveFilePort(port) && tenths < 50; ++tenths) {
        Sleep(100);
    }
}

bool PrinterExists(const std::wstring& name) {
    return Open(name, PRINTER_ACCESS_USE) != nullptr;
}

std::vector<std::wstring> PrinterNames() {
    constexpr DWORD kFlags = PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS;
    std::vector<BYTE> buffer;
    DWORD size = 0;
    DWORD count = 0;
    // Others add printers meanwhile: the size asked for may be too small by the time it is used.
    while (
        !EnumPrintersW(kFlags, nullptr, 4, buffer.data(), static_cast<DWORD>(buffer.size()), &size, &count)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
            throw SpoolerError("EnumPrinters", GetLastError());
        }
        buffer.resize(size);
    }
    const auto* const printers = reinterpret_cast<const PRINTER_INFO_4W*>(buffer.data());
    std::vector<std::wstring> names;
    names.reserve(count);
    for (DWORD i = 0; i < count; ++i) {
        names.emplace_back(printers[i].pPrinterName);
    }
    return names;
}

std::wstring UniquePrinterName() {
    // Process identifiers come again, and a process that was killed left its printers.
    static const std::wstring begin = L"Label " + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                      std::to_wstring(GetTickCount64() % 10'000'000) + L"-";
    static std::atomic<int> made{0};
    return begin + std::to_wstring(++made);
}

Printer::Printer(std::wstring name, const PrinterSettings& settings) : m_name(std::move(name)) {
    MakePrinter(m_name, settings);
}

std::optional<std::wstring> GetDefaultPrinterName() {
    DWORD size = 0;
    GetDefaultPrinterW(nullptr, &size);
    std::wstring name(size, L'\0');
    if (size == 0 || !GetDefaultPrinterW(name.data(), &size)) {
        return std::nullopt;
    }
    name.resize(size - 1); // the size counts the zero
    return name;
}

void SetDefaultPrinterName(const std::optional<std::wstring>& name) {
    // Clearing what is clear already counts as a failure, which is none here.
    if (!name) {
        WriteProfileStringW(kProfileSection, kProfileDevice, nullptr);
    } else if (!SetDefaultPrinterW(name->c_str())) {
        throw SpoolerError("SetDefaultPrinter", GetLastError());
    }
}

DefaultPrinter::DefaultPrinter(const std::optional<std::wstring>& name) : m_former(GetDefaultPrinterName()) {
    SetDefaultPrinterName(name);
}

DefaultPrinter::~DefaultPrinter() {
    // A former one that is gone by now leaves none behind.
    SetDefaultPrinterName(m_former && PrinterExists(*m_former) ? m_former : std::nullopt);
}

} // namespace demo
