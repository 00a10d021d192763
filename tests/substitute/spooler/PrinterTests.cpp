// Opening a printer and reading its record, on a spooler in memory.
#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <utility>

#include "substitute/base/Failure.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/FakeSpooler.h"

using namespace kemba::substitute;
using namespace kit;
using namespace std::chrono_literals;

namespace {

class Printer : public testing::Test {
  protected:
    Printer() { spooler.printers[L"Label"].comment = L"by the door"; }
    FakeSpooler spooler;
    kemba::substitute::PrinterLocks locks;
};

TEST_F(Printer, KeepsOneHandleAndClosesIt) {
    {
        const kemba::substitute::Printer printer(spooler, locks, L"Label");
        printer.Describe();
        printer.Describe();
        EXPECT_EQ(spooler.open, 1);
    }
    EXPECT_EQ(spooler.open, 0);
    EXPECT_EQ(spooler.opened, 1);
}

TEST_F(Printer, AnUnknownNameIsRefusedAndNamed) {
    const Failure failure = FailureOf([&] { kemba::substitute::Printer(spooler, locks, L"Other"); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_NE(failure.reason.find(L"opening printer \"Other\" failed: "), std::wstring::npos);
    EXPECT_NE(failure.reason.find(L"error 1801"), std::wstring::npos);
    EXPECT_EQ(spooler.open, 0);
}

TEST_F(Printer, AnEmptyNameNeverReachesTheSpooler) {
    spooler.printers[L""]; // the print server
    EXPECT_EQ(FailureOf([&] { kemba::substitute::Printer(spooler, locks, L""); }).status,
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(spooler.opened, 0);
}

TEST_F(Printer, ARecordThatGrowsIsAskedForAgain) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    spooler.growths = 3;
    spooler.asked = 0;
    EXPECT_EQ(printer.Describe().comment, L"by the door");
    EXPECT_EQ(spooler.asked, 4); // three times too small, at last
}

TEST_F(Printer, AFailingSpoolerIsReportedWithItsError) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_ACCESS_DENIED;
    EXPECT_EQ(FailureOf([&] { printer.Describe(); }).status, E_ACCESSDENIED);
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_INSUFFICIENT_BUFFER; // and yet no more bytes wanted: no endless loop
    EXPECT_EQ(FailureOf([&] { printer.Describe(); }).status, HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(Printer, TheShareNameCountsOnlyWhileThePrinterIsShared) {
    spooler.printers[L"Label"].share = L"LABEL";
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    EXPECT_EQ(printer.Describe().shareName, L"");
    spooler.printers[L"Label"].attributes = PRINTER_ATTRIBUTE_SHARED;
    EXPECT_EQ(printer.Describe().shareName, L"LABEL");
}

TEST_F(Printer, AReadAsksTheSpoolerOnce) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    spooler.asked = 0;
    printer.Describe();
    EXPECT_EQ(spooler.asked, 1);
}

TEST_F(Printer, WhatIsNoPrinterIsRefusedThoughItCanBeOpened) {
    for (const wchar_t* const name :
         {L",XcvMonitor Local Port", L",XcvPort LPT1:", L"\\\\server,XcvMonitor Local Port", L"Label,Job 5",
          L"Label, Job 5", L"\\\\server", L"\\\\", L"\\\\server\\Label,Job 5"}) {
        SCOPED_TRACE(name);
        // The spooler gives a handle; what the handle is good for differs.
        const std::wstring text = name;
        spooler.opensAs[text] = text.find(L"Label") == std::wstring::npos ? L"" : L"Label";
        const Failure failure = FailureOf([&] { kemba::substitute::Printer(spooler, locks, text); });
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
        EXPECT_EQ(spooler.open, 0);
    }
    spooler.printers[L"Label, left"].comment = L"comma";
    EXPECT_EQ(kemba::substitute::Printer(spooler, locks, L"LABEL, left").Describe().comment, L"comma");
    spooler.printers[L"\\\\server\\Label"].comment = L"remote";
    EXPECT_EQ(kemba::substitute::Printer(spooler, locks, L"\\\\server\\Label").Describe().comment, L"remote");
}

TEST_F(Printer, ARenamedPrinterIsStillTheOneThatWasNamed) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    spooler.Rename(L"Label", L"Label 2");
    spooler.printers[L"Label"].comment = L"another one";
    printer.ChangeComment(L"changed");
    printer.Control(PRINTER_CONTROL_PAUSE, L"pausing");
    EXPECT_EQ(printer.Describe().comment, L"changed");
    EXPECT_EQ(spooler.printers[L"Label 2"].comment, L"changed");
    EXPECT_EQ(spooler.printers[L"Label"].comment, L"another one");
    EXPECT_EQ(spooler.open, 1);
}

TEST_F(Printer, ARenameInTheMiddleOfAChangeFailsIt) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    bool renamed = false;
    spooler.before = [&](FakeSpooler::Call call) {
        if (call == FakeSpooler::Call::Open && !std::exchange(renamed, true)) {
            spooler.Rename(L"Label", L"Label 2");
            spooler.printers[L"Label"].comment = L"another one";
        }
    };
    EXPECT_EQ(FailureOf([&] { printer.ChangeComment(L"changed"); }).status,
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(spooler.printers[L"Label"].comment, L"another one");
    EXPECT_EQ(spooler.printers[L"Label 2"].comment, L"by the door");
}

TEST_F(Printer, ADeletedPrinterIsNotReplacedByOneOfItsName) {
    const kemba::substitute::Printer printer(spooler, locks, L"Label");
    spooler.Lose(L"Label");
    spooler.printers[L"Label"].comment = L"another one";
    EXPECT_EQ(FailureOf([&] { printer.ChangeComment(L"changed"); }).status,
              HRESULT_FROM_WIN32(ERROR_PRINTER_DELETED));
    EXPECT_EQ(spooler.printers[L"Label"].comment, L"another one");
}

TEST_F(Printer, TwoChangesAtOnceAreBothKept) {
    const kemba::substitute::Printer first(spooler, locks, L"Label");
    const kemba::substitute::Printer second(spooler, locks, L"LABEL"); // as another client named it
    std::thread other;
    spooler.before = [&](FakeSpooler::Call call) {
        if (call == FakeSpooler::Call::SetRecord && !other.joinable()) { // between reading and writing
            other = std::thread([&] { second.ChangeLocation(L"Hall"); });
            std::this_thread::sleep_for(50ms);
        }
    };
    first.ChangeComment(L"changed");
    other.join();
    EXPECT_EQ(first.Describe().comment, L"changed");
    EXPECT_EQ(first.Describe().location, L"Hall");
}

TEST(Desktop, ADialogIsShownOnlyWhereSomebodyIsConnected) {
    const struct {
        kemba::substitute::Desktop desktop;
        bool shown;
    } rows[] = {
        {{true, 1, true}, true},   // a user at the machine, or through a remote desktop
        {{false, 1, true}, false}, // a scheduled task without a desktop
        {{true, 0, true}, false},  // a service's session, whatever its desktop says
        {{true, 1, false}, false}, // a session that was left
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CanShowDialogs(row.desktop), row.shown)
            << row.desktop.visible << row.desktop.session << row.desktop.sessionActive;
    }
}

} // namespace
