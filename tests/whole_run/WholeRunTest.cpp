// Whole runs inside the test process.
#include "tests/whole_run/WholeRunTest.h"

#include <initializer_list>

#include "cli/ApplicationSettings.h"
#include "cli/main/EntryPoint.h"
#include "cli/main/ProcessObjects.h"
#include "demo/Printers.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Holdings.h"
#include "tests/kit/Printed.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/FaultTable.h"

namespace kit {
namespace {

Words OnPrinters(std::initializer_list<const demo::Printer*> printers, const Words& words) {
    Words line;
    for (const demo::Printer* const printer : printers) {
        line.insert(line.end(), {L"/p", printer->Name()});
    }
    line.insert(line.end(), words.begin(), words.end());
    return line;
}

void ForgetSettings() {
    kemba::ApplicationSettings& settings = kemba::TheProcessObjects().settings;
    settings.allPrinters = settings.quiet = false;
    settings.printerNames.RemoveAll();
}

} // namespace

RunResult RunAfresh(const Words& words) {
    ForgetSettings();
    return RunWords(kemba::RunKemba, words);
}

Balance::Balance() {
    static const bool watched = [] {
        WatchHoldings(GetModuleHandleW(nullptr));
        // What is made once and kept: by the tests' own means, by the program's process-wide objects, the
        // first run looking at the system and at a printer, and by the runtime library when an exception is
        // thrown.
        SCOPED_TRACE("warming up");
        WithoutNumbers({});
        FakeServer server;
        const demo::Printer printer;
        RunAfresh({L"/p", printer.Name(), L"version"});
        server.Fail("IVersionInformation.GetVersion", E_FAIL);
        RunAfresh({L"version", L"interface"});
        return true;
    }();
    static_cast<void>(watched);
    ForgetSettings();
    m_before = Held();
}

Balance::~Balance() {
    ForgetSettings();
    if (!testing::Test::HasFailure()) {
        EXPECT_EQ(Differences(m_before, Held()), Lines{});
    }
}

RunResult WholeRunTest::Run(const Words& words) {
    RunResult result = RunAfresh(words);
    EXPECT_EQ(server.Faults(), Lines{});
    return result;
}

RunResult WholeRunTest::RunOnFirst(const Words& words) {
    return Run(OnPrinters({&first}, words));
}

RunResult WholeRunTest::RunOnBoth(const Words& words) {
    return Run(OnPrinters({&first, &second}, words));
}

} // namespace kit
