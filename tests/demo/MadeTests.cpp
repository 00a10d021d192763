// The record of what was made.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "demo/Made.h"
#include "demo/Printers.h"
#include "tests/kit/Environment.h"
#include "tests/kit/TemporaryFile.h"

using namespace kit;

namespace {

TEST(Made, IsReadAsItWasWritten) {
    const TemporaryFile record;
    const EnvironmentPreset variable(demo::kRecordVariable);
    variable.Put(record.Path());
    demo::RememberMade(demo::kMadePort, L"C:\\with a blank\\\u00FCber \u5009.prn");
    demo::RememberMade(demo::kMadeDriver, L"Generic / Text Only");
    const std::vector<demo::Made> made = {{"port", L"C:\\with a blank\\\u00FCber \u5009.prn"},
                                          {"driver", L"Generic / Text Only"}};
    EXPECT_EQ(demo::ReadMade(record.Read()), made);
}

TEST(Made, EveryPrinterIsThereBeforeItIsMade) {
    const TemporaryFile record;
    const EnvironmentPreset variable(demo::kRecordVariable);
    variable.Put(record.Path());
    const demo::Printer printer;
    EXPECT_EQ(demo::ReadMade(record.Read()), (std::vector<demo::Made>{{"printer", printer.Name()}}));
    EXPECT_ANY_THROW(demo::MakePrinter(printer.Name(), {})); // somebody else's, for all the record knows
    EXPECT_EQ(demo::ReadMade(record.Read()).size(), 1U);
}

TEST(Made, NothingIsMadeThatCannotBeRecorded) {
    const EnvironmentPreset variable(demo::kRecordVariable);
    variable.Put(L"C:\\no such folder\\record");
    const std::wstring name = demo::UniquePrinterName();
    EXPECT_THROW(demo::MakePrinter(name, {}), std::runtime_error);
    EXPECT_FALSE(demo::PrinterExists(name));
}

TEST(Made, ALineThatWasCutOffIsLeftOut) {
    EXPECT_EQ(demo::ReadMade("printer Label 1\nprinter Lab"),
              (std::vector<demo::Made>{{"printer", L"Label 1"}}));
    EXPECT_TRUE(demo::ReadMade("").empty());
    EXPECT_TRUE(demo::ReadMade("torn\n\n").empty());
}

} // namespace
