// settings import and settings export.
#include <string>

#include "demo/Printers.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Printed.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class ImportExport : public WholeRunTest {
  protected:
    static std::string Imported(const std::string& name) { return "Settings imported for '" + name + "'."; }
    static std::string Exported(const std::string& name) { return "Settings exported for '" + name + "'."; }

    const std::string end = "Finished processing command.";
    const TemporaryFile file;
};

class Import : public ImportExport {
  protected:
    const std::string begin = "Executing 'Import' command.";
};

class Export : public ImportExport {
  protected:
    const std::string begin = "Executing 'Export' command.";
};

TEST_F(Import, ServesEveryPrinterWithThePathAsTyped) {
    const auto run = RunOnBoth({L"settings", L"import", file.Path(), L"ignored"});
    EXPECT_EQ(run.output, Output({begin, Imported(firstName), Imported(secondName), end}));
    EXPECT_EQ(run.status, 0);
    const std::string arguments = "(\"" + Narrow(file.Path()) + "\", VT_ERROR:0x80020004)";
    EXPECT_EQ(server.Calls(),
              (Lines{"DriverAutomation#1.PutPrinterName(\"" + firstName + "\")",
                     "DriverAutomation#1.GetSettings()", "DriverSettings#1.ImportSettings" + arguments,
                     "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
                     "DriverAutomation#2.GetSettings()", "DriverSettings#2.ImportSettings" + arguments}));
}

TEST_F(Import, WithoutAFileStopsAtTheFirstPrinter) {
    const auto run = RunOnBoth({L"settings", L"import"});
    EXPECT_EQ(run.output, Output({begin, "Incorrect number of arguments.", end}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Import, AMissingFileIsReportedOnce) {
    for (const wchar_t* const path : {L"missing.vqs", L"", L"no\\such\\folder\\x.vqs", L"."}) {
        const auto run = RunOnBoth({L"settings", L"import", path});
        EXPECT_EQ(run.output, Output({begin, "File does not exist.", end}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Import, RefusedEverywhereStillSucceeds) {
    server.GiveNull("IDriverAutomation.GetSettings");
    const auto run = RunOnBoth({L"settings", L"import", file.Path()});
    EXPECT_EQ(run.output, Output({begin, kUnsupported, kUnsupported, end}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Import, ServesAllPrinters) {
    const auto run = Run({L"/a", L"settings", L"import", file.Path()});
    Lines expected{begin};
    for (const std::wstring& name : demo::PrinterNames()) {
        expected.push_back(Imported(Printed(name)));
    }
    ASSERT_GE(expected.size(), 3U);
    expected.push_back(end);
    EXPECT_EQ(run.output, Output(expected));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Export, ServesOnePrinterWithThePathAsTyped) {
    const auto run = RunOnFirst({L"settings", L"export", L"no such folder/out.vqs", L"ignored"});
    EXPECT_EQ(run.output, Output({begin, Exported(firstName), end}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(
        server.Journal(),
        (Lines{"CoInitialize(2)", "CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
               "DriverAutomation#1.QueryInterface(IDriverAutomation)",
               "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")", "DriverAutomation#1.GetSettings()",
               "DriverSettings#1.ExportSettings(\"no such folder/out.vqs\", VT_ERROR:0x80020004)",
               "~DriverSettings#1", "~DriverAutomation#1", "CoUninitialize()", "CoUninitialize()"}));
}

TEST_F(Export, ServesTheDefaultPrinter) {
    const demo::DefaultPrinter makeDefault(second.Name());
    EXPECT_EQ(Run({L"settings", L"export", L"out.vqs"}).output, Output({begin, Exported(secondName), end}));
    EXPECT_EQ(server.Calls()[0], "DriverAutomation#1.PutPrinterName(\"" + secondName + "\")");
}

TEST_F(Export, OfTwoPrintersFailsWithoutAClosingLine) {
    for (const Words& words :
         {Words{L"settings", L"export", file.Path()}, {L"/a", L"settings", L"export", file.Path()}}) {
        const auto run = RunOnBoth(words);
        EXPECT_EQ(run.output, Output({begin, "Multiple printers not supported for this command."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Export, OfOnePrinterNamedTwiceFailsToo) {
    const auto run = RunOnFirst({L"/p", first.Name(), L"settings", L"export", L"out.vqs"});
    EXPECT_EQ(run.output, Output({begin, "Multiple printers not supported for this command."}));
    EXPECT_EQ(run.status, 2);
}

TEST_F(Export, WithoutAFileFailsWhateverTheNumberOfPrinters) {
    for (const auto& run : {RunOnFirst({L"settings", L"export"}), RunOnBoth({L"settings", L"export"})}) {
        EXPECT_EQ(run.output, Output({begin, "Incorrect number of arguments."}));
        EXPECT_EQ(run.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Export, AMissingSettingsObjectFails) {
    server.GiveNull("IDriverAutomation.GetSettings");
    const auto run = RunOnFirst({L"settings", L"export", L"out.vqs"});
    EXPECT_EQ(run.output, Output({begin, kUnsupported}));
    EXPECT_EQ(run.status, 2);
}

} // namespace
