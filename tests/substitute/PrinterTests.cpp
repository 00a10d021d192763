// Opening a printer and reading its record, on a spooler in memory.
#include "substitute/Printer.h"

#include <gtest/gtest.h>

#include <functional>

#include "FakePrinterApi.h"
#include "substitute/Failure.h"

namespace {

using kemba::substitute::Failure;
using kemba::substitute::Printer;

HRESULT StatusOf(const std::function<void()>& work, std::wstring* reason = nullptr) {
    try {
        work();
        return S_OK;
    } catch (const Failure& failure) {
        if (reason) {
            *reason = failure.reason;
        }
        return failure.status;
    }
}

class PrinterTest : public testing::Test {
  protected:
    PrinterTest() { spooler.printers[L"Label"].comment = L"by the door"; }
    FakePrinterApi spooler;
};

TEST_F(PrinterTest, KeepsOneHandleAndClosesIt) {
    {
        const Printer printer(spooler, L"Label");
        printer.Describe();
        printer.Describe();
        EXPECT_EQ(spooler.open, 1);
    }
    EXPECT_EQ(spooler.open, 0);
    EXPECT_EQ(spooler.opened, 1);
}

TEST_F(PrinterTest, AnUnknownNameIsRefusedAndNamed) {
    std::wstring reason;
    EXPECT_EQ(StatusOf([&] { Printer(spooler, L"Other"); }, &reason),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_NE(reason.find(L"opening printer \"Other\" failed: "), std::wstring::npos);
    EXPECT_NE(reason.find(L"error 1801"), std::wstring::npos);
    EXPECT_EQ(spooler.open, 0);
}

TEST_F(PrinterTest, AnEmptyNameNeverReachesTheSpooler) {
    spooler.printers[L""]; // the print server
    EXPECT_EQ(StatusOf([&] { Printer(spooler, L""); }), HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(spooler.opened, 0);
}

TEST_F(PrinterTest, ARecordThatGrowsIsAskedForAgain) {
    spooler.growths = 3;
    EXPECT_EQ(Printer(spooler, L"Label").Describe().comment, L"by the door");
    EXPECT_EQ(spooler.asked, 5); // its size, three times too small, at last
}

TEST_F(PrinterTest, AFailingSpoolerIsReportedWithItsError) {
    const Printer printer(spooler, L"Label");
    spooler.getError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(StatusOf([&] { printer.Describe(); }), E_ACCESSDENIED);
    spooler.getError = ERROR_INSUFFICIENT_BUFFER; // and yet no more bytes wanted: no endless loop
    EXPECT_EQ(StatusOf([&] { printer.Describe(); }), HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(PrinterTest, TheShareNameCountsOnlyWhileThePrinterIsShared) {
    spooler.printers[L"Label"].share = L"LABEL";
    const Printer printer(spooler, L"Label");
    EXPECT_EQ(printer.Describe().shareName, L"");
    spooler.printers[L"Label"].attributes = PRINTER_ATTRIBUTE_SHARED;
    EXPECT_EQ(printer.Describe().shareName, L"LABEL");
}

} // namespace
