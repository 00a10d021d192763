// One, two and many printers, and names and values that are hard to carry.
#include <algorithm>
#include <string>
#include <vector>

#include "demo/Printers.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Printed.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/ListedPrinters.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

/// A scripted server; the printers are what each test lists.
class ManyPrinters : public testing::Test {
  protected:
    RunResult Run(const Words& words) {
        RunResult result = RunAfresh(words);
        EXPECT_EQ(server.Faults(), Lines{});
        return result;
    }

    FakeServer server;
};

TEST_F(ManyPrinters, AreServedInTheOrderOfTheList) {
    for (const int count : {1, 2, 500}) {
        const std::vector<std::wstring> names = Numbered(count);
        const ListedPrinters printers(names);
        server.ClearJournal();
        Lines output{"Executing 'Get' command."};
        Lines calls;
        for (const std::wstring& name : names) {
            output.push_back(Printed(name) + ": Comment of " + Printed(name));
            calls.push_back("PutPrinterName(\"" + Narrow(name) + "\")");
            calls.push_back("GetComment()");
        }
        output.push_back("Finished processing command.");
        const RunResult run = Run({L"/a", L"get", L"comment"});
        EXPECT_EQ(run.output, Output(output));
        EXPECT_EQ(run.status, 0);
        Lines asked = server.Calls();
        for (std::string& line : asked) {
            line.erase(0, line.find('.') + 1);
        }
        EXPECT_EQ(asked, calls);
    }
}

TEST_F(ManyPrinters, AreAllReportedWhenAllRefuse) {
    const ListedPrinters printers(Numbered(500));
    server.Fail("IPrinterQueue.Purge", E_NOTIMPL).WithInformation(L"Driver", L"Not now");
    Lines output(502, kUnsupported);
    output.front() = "Executing 'Queue' command.";
    output.back() = "Finished processing command.";
    const RunResult run = Run({L"/a", L"queue", L"purge"});
    EXPECT_EQ(run.output, Output(output));
    EXPECT_EQ(run.status, 0);
}

TEST_F(ManyPrinters, StopAtTheOneThatFails) {
    const ListedPrinters printers(Numbered(500));
    server.Throw("IDriverAutomation.PutComment").ForPrinter(L"Label 250");
    const RunResult run = Run({L"/a", L"set", L"comment", L"x"});
    EXPECT_EQ(run.output, Framed("Set", {"Unspecified error."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Calls().size(), 500U);
}

TEST_F(ManyPrinters, AreTooManyForAnExport) {
    const ListedPrinters printers(Numbered(500));
    const RunResult run = Run({L"/a", L"settings", L"export", L"out.vqs"});
    EXPECT_EQ(run.output,
              Output({"Executing 'Export' command.", "Multiple printers not supported for this command."}));
    EXPECT_EQ(run.status, 2);
}

const std::vector<std::wstring> kHardNames = {
    std::wstring(200, L'n'),
    L"%1",
    L"100%1%1 sure",
    L"\"quoted\" and 'quoted'",
    L"a::b",
    L"a/b",
    L"/a",
    L"-q",
    L"tab\tand blank ",
    L"{0} %s %d \\n",
    L"\x00DC"
    L"ber \x00E9t\x00E9",
    L"\x65E5\x672C\x8A9E\x30D7\x30EA\x30F3\x30BF",
    L"\xD83D\xDDA8 \x0416",
};

TEST_F(ManyPrinters, OfAnyNameAreBoundAndPrintedAsTheyAre) {
    const ListedPrinters printers(kHardNames);
    const TemporaryFile file;
    const struct {
        Words words;
        std::string opening;
        std::string before;
        std::string after;
    } rows[] = {
        {{L"/a", L"send", file.Path()}, "Send", "File sent to '", "'."},
        {{L"/a", L"settings", L"import", file.Path()}, "Import", "Settings imported for '", "'."},
        {{L"/a", L"settings", L"reset"}, "Settings", "Settings reset for '", "'."},
    };
    for (const auto& row : rows) {
        server.ClearJournal();
        Lines output{"Executing '" + row.opening + "' command."};
        for (const std::wstring& name : kHardNames) {
            output.push_back(row.before + Printed(name) + row.after);
        }
        output.push_back("Finished processing command.");
        EXPECT_EQ(Run(row.words).output, Output(output));
        const Lines calls = server.Calls();
        for (const std::wstring& name : kHardNames) {
            const std::string binding = "PutPrinterName(\"" + Narrow(name) + "\")";
            EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [&](const std::string& call) {
                return call.ends_with(binding);
            })) << binding;
        }
    }
}

TEST_F(ManyPrinters, OfAnyNameCarryValuesOfAnyLength) {
    const ListedPrinters printers(kHardNames);
    server.GiveText("IDriverAutomation.GetLocation", std::wstring(30'000, L'v') + L"%1");
    Lines output{"Executing 'Get' command."};
    for (const std::wstring& name : kHardNames) {
        output.push_back(Printed(name) + ": " + std::string(30'000, 'v') + "%1");
    }
    output.push_back("Finished processing command.");
    EXPECT_EQ(Run({L"/a", L"get", L"location"}).output, Output(output));
}

TEST_F(ManyPrinters, OfTheSpoolerItselfAreServedByName) {
    const demo::Printer longNamed(std::wstring(200, L'L') + std::to_wstring(GetCurrentProcessId()), {});
    const demo::Printer oddlyNamed(L"%1 \"x\" a::b c/d " + std::to_wstring(GetCurrentProcessId()), {});
    Lines output{"Executing 'Get' command."};
    for (const demo::Printer* const printer : {&longNamed, &oddlyNamed}) {
        output.push_back(Printed(printer->Name()) + ": Comment of " + Printed(printer->Name()));
    }
    output.push_back("Finished processing command.");
    EXPECT_EQ(Run({L"/p", longNamed.Name(), L"get", L"comment", L"/p", oddlyNamed.Name()}).output,
              Output(output));
}

} // namespace
