// Operations of the registered server, and the calls that stand below each of them, many times over. Prints
// how many nanoseconds one took.
//
//     server-client read|read-floor PRINTER COUNT
//     server-client send|send-floor|export|export-floor|import|import-floor PRINTER COUNT FILE
//     server-client hold PRINTER        keeps the server running until its input ends
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>
#include <winspool.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "automation/Owners.h"
#include "core/Handles.h"

namespace {

using kemba::ComPtr;
using Bytes = std::vector<BYTE>;

struct Subject {
    std::wstring printer;
    std::wstring file;
    ComPtr<IDriverAutomation> automation;
    ComPtr<IVersionInformation> version; ///< its question asks nothing of the spooler: a bare call
};

void Need(bool success) {
    if (!success) {
        static_cast<void>(std::fprintf(stderr, "server-client: error %lu\n", GetLastError()));
        std::exit(3);
    }
}

OCore::UniquePrinter Open(const std::wstring& name, DWORD access) {
    std::wstring changeable = name;
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
    HANDLE printer = nullptr;
    Need(OpenPrinterW(changeable.data(), &printer, &defaults) != FALSE);
    return OCore::UniquePrinter(printer);
}

Bytes ReadRecord(HANDLE printer, DWORD level) {
    Bytes record(std::size_t{8} * 1024);
    DWORD needed = 0;
    Need(GetPrinterW(printer, level, record.data(), static_cast<DWORD>(record.size()), &needed) != FALSE);
    return record;
}

/// The printer's device mode as the driver gives it.
Bytes ReadMode(const Subject& subject, HANDLE printer) {
    std::wstring name = subject.printer;
    const LONG size = DocumentPropertiesW(nullptr, printer, name.data(), nullptr, nullptr, 0);
    Need(size > 0);
    Bytes mode(static_cast<std::size_t>(size));
    Need(DocumentPropertiesW(nullptr, printer, name.data(), reinterpret_cast<DEVMODEW*>(mode.data()), nullptr,
                             DM_OUT_BUFFER) == IDOK);
    return mode;
}

OCore::UniqueHandle OpenFile(const std::wstring& path, DWORD access, DWORD disposition) {
    auto file =
        OCore::OwnFile(CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition, 0, nullptr));
    Need(file != nullptr);
    return file;
}

DWORD ReadBlock(HANDLE file, Bytes& block) {
    DWORD read = 0;
    Need(ReadFile(file, block.data(), static_cast<DWORD>(block.size()), &read, nullptr) != FALSE);
    return read;
}

void CallOnly(const Subject& subject) {
    kemba::CallForText(subject.version, &IVersionInformation::GetVersion);
}

void Read(const Subject& subject) {
    kemba::CallForText(subject.automation, &IDriverAutomation::GetComment);
}

void ReadFloor(const Subject& subject) {
    static const OCore::UniquePrinter printer = Open(subject.printer, PRINTER_ACCESS_USE);
    ReadRecord(printer.get(), 2);
    CallOnly(subject);
}

void Send(const Subject& subject) {
    kemba::Call(subject.automation, &IDriverAutomation::SendFile, kemba::TextArgument(subject.file).Get(),
                kemba::TextArgument(L"").Get());
}

void SendFloor(const Subject& subject) {
    const OCore::UniqueHandle file = OpenFile(subject.file, GENERIC_READ, OPEN_EXISTING);
    const OCore::UniquePrinter printer = Open(subject.printer, PRINTER_ACCESS_USE);
    std::wstring name = L"bench";
    std::wstring type = L"RAW";
    DOC_INFO_1W document{name.data(), nullptr, type.data()};
    Need(StartDocPrinterW(printer.get(), 1, reinterpret_cast<BYTE*>(&document)) != 0);
    Need(StartPagePrinter(printer.get()) != FALSE);
    Bytes block(std::size_t{64} * 1024);
    while (const DWORD read = ReadBlock(file.get(), block)) {
        DWORD written = 0;
        Need(WritePrinter(printer.get(), block.data(), read, &written) && written == read);
    }
    Need(EndPagePrinter(printer.get()) && EndDocPrinter(printer.get()));
}

ComPtr<IDriverSettings> SettingsOf(const Subject& subject) {
    return kemba::CallForObject(subject.automation, &IDriverAutomation::GetSettings);
}

void Export(const Subject& subject) {
    kemba::Call(SettingsOf(subject), &IDriverSettings::ExportSettings,
                kemba::TextArgument(subject.file).Get(), kemba::OwnedVariant::Omitted().Get());
}

/// Reads both device modes, writes them to a new file, and gives it its name.
void ExportFloor(const Subject& subject) {
    CallOnly(subject);
    CallOnly(subject);
    const OCore::UniquePrinter printer = Open(subject.printer, PRINTER_ACCESS_USE);
    Bytes bytes = ReadRecord(printer.get(), 2);
    const Bytes mode = ReadMode(subject, printer.get());
    bytes.insert(bytes.end(), mode.begin(), mode.end());
    const std::wstring target = subject.file + L".floor";
    const std::wstring path = target + L".new";
    {
        const OCore::UniqueHandle file = OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS);
        DWORD written = 0;
        Need(WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
             FlushFileBuffers(file.get()));
    }
    Need(MoveFileExW(path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
         FALSE);
}

void Import(const Subject& subject) {
    kemba::Call(SettingsOf(subject), &IDriverSettings::ImportSettings,
                kemba::TextArgument(subject.file).Get(), kemba::OwnedVariant::Omitted().Get());
}

/// Reads the file, has the driver take a device mode, and sets it for all and for this user.
void ImportFloor(const Subject& subject) {
    CallOnly(subject);
    CallOnly(subject);
    Bytes bytes(std::size_t{64} * 1024);
    ReadBlock(OpenFile(subject.file, GENERIC_READ, OPEN_EXISTING).get(), bytes);
    const OCore::UniquePrinter printer = Open(subject.printer, PRINTER_ALL_ACCESS);
    Bytes mode = ReadMode(subject, printer.get());
    std::wstring name = subject.printer;
    auto* const devmode = reinterpret_cast<DEVMODEW*>(mode.data());
    Need(DocumentPropertiesW(nullptr, printer.get(), name.data(), devmode, devmode,
                             DM_IN_BUFFER | DM_OUT_BUFFER) == IDOK);
    PRINTER_INFO_8W forAll{devmode};
    Need(SetPrinterW(printer.get(), 8, reinterpret_cast<BYTE*>(&forAll), 0) != FALSE);
    PRINTER_INFO_9W forUser{devmode};
    Need(SetPrinterW(printer.get(), 9, reinterpret_cast<BYTE*>(&forUser), 0) != FALSE);
}

/// On this program's input: until it ends.
void Hold(const Subject&) {
    while (std::getchar() != EOF) {
    }
}

struct Operation {
    const wchar_t* word;
    void (*work)(const Subject& subject);
};

constexpr Operation kOperations[] = {
    {L"read", Read},     {L"read-floor", ReadFloor},     {L"send", Send},     {L"send-floor", SendFloor},
    {L"export", Export}, {L"export-floor", ExportFloor}, {L"import", Import}, {L"import-floor", ImportFloor},
    {L"hold", Hold},
};

int Run(const Operation& operation, int count, const Subject& subject) {
    const auto begin = std::chrono::steady_clock::now();
    for (int left = count; left > 0; --left) {
        operation.work(subject);
    }
    const std::chrono::nanoseconds took = std::chrono::steady_clock::now() - begin;
    std::printf("%lld\n", static_cast<long long>(took.count() / count));
    return 0;
}

} // namespace

int wmain(int count, wchar_t* words[]) {
    try {
        for (const Operation& operation : kOperations) {
            if (count > 2 && std::wstring(words[1]) == operation.word) {
                Need(SUCCEEDED(CoInitialize(nullptr)));
                const int status =
                    Run(operation, count > 3 ? std::stoi(words[3]) : 1,
                        {words[2], count > 4 ? words[4] : L"", kemba::ActivateForPrinter(words[2]),
                         kemba::Activate<VersionInformation, IVersionInformation>()});
                CoUninitialize();
                return status;
            }
        }
        return 2;
    } catch (const kemba::ComError& error) {
        static_cast<void>(std::fprintf(stderr, "server-client: status %08lX\n",
                                       static_cast<unsigned long>(error.Status())));
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "server-client: %s\n", error.what()));
    }
    return 3;
}
