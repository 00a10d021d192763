// demo-printers: sees to it that two label printers are there to try kemba on, and shows where their output
// goes.
#include <cstdio>
#include <exception>
#include <string>

#include "demo/PortTarget.h"
#include "demo/Printers.h"
#include "demo/SpoolerLock.h"

namespace {

struct DemoPrinter {
    const wchar_t* name;
    const wchar_t* file; ///< in the folder for temporary files; what is printed is appended
    demo::PrinterSettings settings;
};

const DemoPrinter kPrinters[] = {
    {L"Dock 1", L"dock-1.prn", {L"LPT1:", L"Labels for parcels", L"Loading dock, left gate", L"dock1", 0}},
    {L"Dock 2", L"dock-2.prn", {L"LPT2:", L"Labels for pallets", L"Loading dock, right gate", L"", 0}},
};

std::wstring TemporaryFolder() {
    wchar_t folder[MAX_PATH + 1];
    return {folder, GetTempPathW(MAX_PATH + 1, folder)};
}

void ProvidePrinters() {
    const demo::SpoolerLock lock(L"kemba demo printers");
    const std::wstring folder = TemporaryFolder();
    bool anyMade = false;
    for (const DemoPrinter& printer : kPrinters) {
        const std::wstring file = folder + printer.file;
        if (!demo::PrinterExists(printer.name)) {
            demo::MakePrinter(printer.name, printer.settings);
            demo::ConnectPort(printer.settings.port, file);
            anyMade = true;
        }
        std::printf("%ls prints to %ls\n", printer.name, file.c_str());
    }
    // A default that the user chose later is left alone.
    if (anyMade || !demo::GetDefaultPrinterName()) {
        demo::SetDefaultPrinterName(kPrinters[0].name);
    }
}

} // namespace

int main() {
    try {
        ProvidePrinters();
        return 0;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "demo-printers: %s\n", error.what()));
        return 1;
    }
}
