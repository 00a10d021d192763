// What a client's visit leaves in the server: nothing.
#include <windows.h>

#include <psapi.h>

#include <cstdio>

#include "demo/WinePrinters.h"
#include "substitute/spooler/WindowsSpooler.h"
#include "tests/substitute/ObjectFixture.h"

namespace {

using kemba::ComPtr;
using kemba::MakeObject;
using namespace kemba::substitute;

std::size_t PrivateBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)));
    return counters.PagefileUsage;
}

TEST(ServerMemory, ThousandsOfVisitsToTheRealSpoolerLeaveNothing) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        const demo::Printer printer;
        WindowsSpooler spooler;
        PrinterLocks locks;
        ActionProfiles profiles([] { return std::wstring(L"C:\\no such folder"); });
        UseCount uses;
        ContractTypes types;
        const ServerContext context{spooler, locks, profiles, uses, types};
        const auto visit = [&] {
            const auto automation = MakeObject<DriverAutomationObject>(context);
            EXPECT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
            std::wstring text;
            EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), S_OK);
            ComPtr<IPrinterInformation> information;
            EXPECT_EQ(automation->GetPrinterInformation(information.Put()), S_OK);
            EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, text), S_OK);
        };
        for (int index = 0; index < 200; ++index) {
            visit();
        }
        const std::size_t before = PrivateBytes();
        for (int index = 0; index < 2'000; ++index) {
            visit();
        }
        const std::size_t after = PrivateBytes();
        std::printf("private memory: %zu KB before, %zu KB after 2000 visits\n", before / 1024, after / 1024);
        EXPECT_LE(after, before + 256 * 1024);
    }
    CoUninitialize();
}

} // namespace
