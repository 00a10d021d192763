// Opening a printer and reading its record, on a spooler in memory.
#include "substitute/spooler/Printer.h"

#include <gtest/gtest.h>

#include "tests/substitute/FailureOf.h"
#include "tests/substitute/FakeSpooler.h"

namespace {

using kemba::substitute::Failure;
using kemba::substitute::Printer;

class PrinterTest : public testing::Test {
  protected:
    PrinterTest() { spooler.printers[L"Label"].comment = L"by the door"; }
    FakeSpooler spooler;
    kemba::substitute::PrinterLocks locks;
};

TEST_F(PrinterTest, KeepsOneHandleAndClosesIt) {
    {
        const Printer printer(spooler, locks, L"Label");
        printer.Describe();
        printer.Describe();
        EXPECT_EQ(spooler.open, 1);
    }
    EXPECT_EQ(spooler.open, 0);
    EXPECT_EQ(spooler.opened, 1);
}

TEST_F(PrinterTest, AnUnknownNameIsRefusedAndNamed) {
    const Failure failure = FailureOf([&] { Printer(spooler, locks, L"Other"); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_NE(failure.reason.find(L"opening printer \"Other\" failed: "), std::wstring::npos);
    EXPECT_NE(failure.reason.find(L"error 1801"), std::wstring::npos);
    EXPECT_EQ(spooler.open, 0);
}

TEST_F(PrinterTest, AnEmptyNameNeverReachesTheSpooler) {
    spooler.printers[L""]; // the print server
    EXPECT_EQ(FailureOf([&] { Printer(spooler, locks, L""); }).status,
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(spooler.opened, 0);
}

TEST_F(PrinterTest, ARecordThatGrowsIsAskedForAgain) {
    const Printer printer(spooler, locks, L"Label");
    spooler.growths = 3;
    spooler.asked = 0;
    EXPECT_EQ(printer.Describe().comment, L"by the door");
    EXPECT_EQ(spooler.asked, 4); // three times too small, at last
}

TEST_F(PrinterTest, AFailingSpoolerIsReportedWithItsError) {
    const Printer printer(spooler, locks, L"Label");
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_ACCESS_DENIED;
    EXPECT_EQ(FailureOf([&] { printer.Describe(); }).status, E_ACCESSDENIED);
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_INSUFFICIENT_BUFFER; // and yet no more bytes wanted: no endless loop
    EXPECT_EQ(FailureOf([&] { printer.Describe(); }).status, HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(PrinterTest, TheShareNameCountsOnlyWhileThePrinterIsShared) {
    spooler.printers[L"Label"].share = L"LABEL";
    const Printer printer(spooler, locks, L"Label");
    EXPECT_EQ(printer.Describe().shareName, L"");
    spooler.printers[L"Label"].attributes = PRINTER_ATTRIBUTE_SHARED;
    EXPECT_EQ(printer.Describe().shareName, L"LABEL");
}

} // namespace
