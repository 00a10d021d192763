// Printers made on the spooler: what others see of them, jobs, the default printer, many processes at once.
#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "demo/PortTarget.h"
#include "demo/Printers.h"
#include "demo/SpoolerError.h"
#include "demo/SpoolerLock.h"
#include "tests/kit/Owners.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"

using namespace kit;

namespace {

bool IsListed(const std::wstring& name) {
    return std::ranges::count(demo::PrinterNames(), name) == 1;
}

/// The printer as the spooler describes it; `buffer` holds the texts.
PRINTER_INFO_2W Describe(const std::wstring& name, std::vector<BYTE>& buffer) {
    const UniquePrinter printer = OwnPrinter(name);
    DWORD size = 0;
    GetPrinterW(printer.get(), 2, nullptr, 0, &size);
    buffer.resize(size);
    const bool done = GetPrinterW(printer.get(), 2, buffer.data(), size, &size);
    return done ? *reinterpret_cast<PRINTER_INFO_2W*>(buffer.data()) : PRINTER_INFO_2W{};
}

std::wstring TextOf(const wchar_t* text) {
    return text ? text : L"";
}

bool SendRaw(const std::wstring& name, std::string bytes) {
    const UniquePrinter printer = OwnPrinter(name);
    wchar_t title[] = L"labels";
    wchar_t datatype[] = L"RAW";
    DOC_INFO_1W document{title, nullptr, datatype};
    DWORD written = 0;
    return printer && StartDocPrinterW(printer.get(), 1, reinterpret_cast<BYTE*>(&document)) != 0 &&
           WritePrinter(printer.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written) &&
           EndDocPrinter(printer.get()) && written == bytes.size();
}

TEST(Printers, APrinterIsListedWhileItLivesAndGoneAfterwards) {
    std::wstring name;
    {
        const demo::Printer printer;
        name = printer.Name();
        EXPECT_TRUE(IsListed(name));
        EXPECT_TRUE(demo::PrinterExists(name));
    }
    EXPECT_FALSE(IsListed(name));
    EXPECT_FALSE(demo::PrinterExists(name));
}

TEST(Printers, APrinterHasTheSettingsThatItWasMadeWith) {
    const demo::Printer printer({.port = L"LPT2:",
                                 .comment = L"by the d\u00F6\u00F6r",
                                 .location = L"Hall 3",
                                 .shareName = L"hall3",
                                 .attributes = PRINTER_ATTRIBUTE_WORK_OFFLINE});
    std::vector<BYTE> buffer;
    const PRINTER_INFO_2W info = Describe(printer.Name(), buffer);
    EXPECT_EQ(TextOf(info.pPrinterName), printer.Name());
    EXPECT_EQ(TextOf(info.pPortName), L"LPT2:");
    EXPECT_EQ(TextOf(info.pComment), L"by the d\u00F6\u00F6r");
    EXPECT_EQ(TextOf(info.pLocation), L"Hall 3");
    EXPECT_EQ(TextOf(info.pShareName), L"hall3");
    EXPECT_EQ(info.Attributes & PRINTER_ATTRIBUTE_SHARED, DWORD{PRINTER_ATTRIBUTE_SHARED});
    EXPECT_EQ(info.Attributes & PRINTER_ATTRIBUTE_WORK_OFFLINE, DWORD{PRINTER_ATTRIBUTE_WORK_OFFLINE});
}

TEST(Printers, APrinterWithoutShareNameIsNotShared) {
    const demo::Printer printer;
    std::vector<BYTE> buffer;
    EXPECT_EQ(Describe(printer.Name(), buffer).Attributes & PRINTER_ATTRIBUTE_SHARED, 0U);
}

TEST(Printers, APrinterHasADriverWithSettings) {
    const demo::Printer printer;
    std::wstring name = printer.Name();
    const UniquePrinter opened = OwnPrinter(name);
    ASSERT_TRUE(opened);
    const LONG size = DocumentPropertiesW(nullptr, opened.get(), name.data(), nullptr, nullptr, 0);
    ASSERT_GE(size, static_cast<LONG>(sizeof(DEVMODEW)));
    std::vector<BYTE> buffer(static_cast<std::size_t>(size));
    auto* const settings = reinterpret_cast<DEVMODEW*>(buffer.data());
    EXPECT_EQ(DocumentPropertiesW(nullptr, opened.get(), name.data(), settings, nullptr, DM_OUT_BUFFER),
              IDOK);
    EXPECT_GT(settings->dmSize, 0);
}

TEST(Printers, TheNameOfAnotherPrinterIsRefused) {
    const demo::Printer printer;
    EXPECT_THROW(demo::MakePrinter(printer.Name(), {}), demo::SpoolerError);
    EXPECT_TRUE(IsListed(printer.Name()));
}

TEST(Printers, ARawJobArrivesByteForByte) {
    const PrinterPort port;
    const demo::Printer printer({.port = port.Name()});
    std::string bytes;
    for (int i = 0; i < 1024; ++i) {
        bytes += static_cast<char>(i);
    }
    ASSERT_TRUE(SendRaw(printer.Name(), bytes));
    EXPECT_EQ(port.Received(bytes.size()), bytes);
    ASSERT_TRUE(SendRaw(printer.Name(), "more"));
    EXPECT_EQ(port.Received(bytes.size() + 4), bytes + "more");
}

TEST(Printers, TheDefaultPrinterIsSetAndPutBack) {
    const demo::SpoolerLock lock;
    const auto former = demo::GetDefaultPrinterName();
    {
        const demo::Printer printer;
        const demo::DefaultPrinter first(printer.Name());
        EXPECT_EQ(demo::GetDefaultPrinterName(), printer.Name());
        {
            const demo::DefaultPrinter none(std::nullopt);
            EXPECT_EQ(demo::GetDefaultPrinterName(), std::nullopt);
        }
        EXPECT_EQ(demo::GetDefaultPrinterName(), printer.Name());
        EXPECT_THROW(demo::SetDefaultPrinterName(L"no such printer"), demo::SpoolerError);
    }
    EXPECT_EQ(demo::GetDefaultPrinterName(), former);
}

TEST(Printers, TheLockKeepsOthersOut) {
    const std::wstring name = demo::UniquePrinterName();
    const UniqueHandle held(CreateMutexW(nullptr, TRUE, name.c_str()));
    std::atomic<bool> inside = false;
    std::thread other([&] {
        const demo::SpoolerLock lock(name.c_str());
        inside = true;
    });
    Sleep(100);
    EXPECT_FALSE(inside);
    ReleaseMutex(held.get());
    other.join();
    EXPECT_TRUE(inside);
}

/// The demo printers' program in a list of printers that is as it was before once the test is over.
class DemoPrinters : public testing::Test {
  protected:
    DemoPrinters() { RemoveAll(); }
    ~DemoPrinters() override { RemoveAll(); }

    static ProcessResult Provide() { return RunProgram(L"demo-printers.exe", {}); }

    static void RemoveAll() {
        for (const wchar_t* const name : {L"Dock 1", L"Dock 2"}) {
            demo::RemovePrinter(name);
        }
        for (const wchar_t* const port : {L"LPT1:", L"LPT2:"}) {
            demo::DisconnectPort(port);
        }
    }

    demo::SpoolerLock m_lock;
    demo::DefaultPrinter m_default{std::nullopt};
};

TEST_F(DemoPrinters, AreMadeWithTheFirstAsTheDefault) {
    const ProcessResult result = Provide();
    ASSERT_EQ(result.status, 0U) << result.errors;
    EXPECT_NE(result.output.find("Dock 1 prints to "), std::string::npos) << result.output;
    std::vector<BYTE> buffer;
    EXPECT_EQ(TextOf(Describe(L"Dock 1", buffer).pShareName), L"dock1");
    EXPECT_EQ(TextOf(Describe(L"Dock 1", buffer).pPortName), L"LPT1:");
    EXPECT_EQ(TextOf(Describe(L"Dock 2", buffer).pPortName), L"LPT2:");
    EXPECT_EQ(TextOf(Describe(L"Dock 2", buffer).pLocation), L"Loading dock, right gate");
    EXPECT_EQ(demo::GetDefaultPrinterName(), L"Dock 1");
}

TEST_F(DemoPrinters, AreLeftAloneWhenTheyAreThere) {
    const ProcessResult first = Provide();
    demo::SetDefaultPrinterName(L"Dock 2");
    const ProcessResult second = Provide();
    EXPECT_EQ(second.status, 0U) << second.errors;
    EXPECT_EQ(second.output, first.output);
    EXPECT_EQ(demo::GetDefaultPrinterName(), L"Dock 2");
    EXPECT_TRUE(IsListed(L"Dock 1")); // once, that is
}

TEST_F(DemoPrinters, WhatIsSentToThemIsAppendedToTheirFiles) {
    ASSERT_EQ(Provide().status, 0U);
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "dock-2.prn";
    std::filesystem::remove(file);
    ASSERT_TRUE(SendRaw(L"Dock 2", std::string("^XA\0^XZ", 7)));
    EXPECT_EQ(ReadBytes(file.wstring(), 7), std::string("^XA\0^XZ", 7));
    std::filesystem::remove(file);
}

} // namespace
