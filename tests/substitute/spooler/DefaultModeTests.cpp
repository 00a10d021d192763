// Where a driver's default device mode comes from.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/spooler/DefaultMode.h"
#include "substitute/spooler/PrinterHandle.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/FakeSpooler.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

class DefaultMode : public testing::Test {
  protected:
    DefaultMode() {
        spooler.printers[L"Label"].driver = L"Zippy 300";
        spooler.defaultMode = MakeMode(5);
    }
    short Copies() { return CopiesOf(ReadDefaultMode(PrinterHandle(spooler, L"Label", PRINTER_ACCESS_USE))); }
    FakeSpooler spooler;
};

TEST_F(DefaultMode, IsAskedOfTheDriversLibrary) {
    EXPECT_EQ(Copies(), 5);
    EXPECT_EQ(spooler.loaded, std::vector<std::wstring>{L"C:\\drivers\\zippy.dll"});
    EXPECT_EQ(spooler.opened, 1);
}

TEST_F(DefaultMode, NoLibraryOutsideOfTheSpoolersFolderIsLoaded) {
    for (const wchar_t* const library : {L"\\\\server\\print$\\zippy.dll", L"zippy.dll",
                                         L"C:\\drivers\\..\\zippy.dll", L"C:\\drivers.dll", L""}) {
        SCOPED_TRACE(library);
        spooler.driver.configuration = library;
        EXPECT_EQ(Copies(), 5); // from a printer made for it
        EXPECT_TRUE(spooler.loaded.empty());
        EXPECT_EQ(spooler.printers.size(), 1u);
        EXPECT_EQ(spooler.open, 0);
    }
}

TEST_F(DefaultMode, ALibraryWithoutTheFunctionLeavesItToTheSpooler) {
    spooler.failing = FakeSpooler::Call::AskLibraryForMode;
    spooler.failure = ERROR_CALL_NOT_IMPLEMENTED;
    EXPECT_EQ(Copies(), 5);
    EXPECT_EQ(spooler.printers.size(), 1u);
    spooler.failure = ERROR_ACCESS_DENIED;
    EXPECT_EQ(FailureOf([&] { Copies(); }).status, E_ACCESSDENIED);
}

TEST_F(DefaultMode, WhatIsNoWholeModeIsNone) {
    for (const Bytes& none : {Bytes(), Bytes(1), Bytes(1000)}) {
        spooler.defaultMode = none;
        EXPECT_EQ(FailureOf([&] { Copies(); }).status, HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    }
}

TEST_F(DefaultMode, LeftOversOfEarlierProcessesAreNotTouched) {
    spooler.driver.configuration = L"";
    const auto left = [&](int number) {
        return L"kemba defaults " + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(number);
    };
    for (int number = 1; number <= 20; ++number) {
        spooler.printers[left(number)].comment = L"left";
    }
    EXPECT_EQ(Copies(), 5);
    EXPECT_EQ(spooler.printers.size(), 21u);
}

TEST_F(DefaultMode, AHiddenPrinterThatCannotBeDeletedIsNamed) {
    spooler.driver.configuration = L"";
    spooler.failing = FakeSpooler::Call::Delete;
    spooler.failure = ERROR_ACCESS_DENIED;
    const Failure failure = FailureOf([&] { Copies(); });
    EXPECT_EQ(failure.status, E_ACCESSDENIED);
    EXPECT_EQ(failure.reason.find(L"deleting the hidden printer \"kemba defaults "), 0u);
}

} // namespace
