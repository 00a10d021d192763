// Whole runs inside the test process.
#include "tests/whole_run/WholeRunTest.h"

#include <initializer_list>

#include "cli/main/EntryPoint.h"
#include "cli/main/ProcessObjects.h"

namespace whole_run {
namespace {

Words OnPrinters(std::initializer_list<const demo::Printer*> printers, const Words& words) {
    Words line;
    for (const demo::Printer* const printer : printers) {
        line.insert(line.end(), {L"/p", printer->Name()});
    }
    line.insert(line.end(), words.begin(), words.end());
    return line;
}

} // namespace

std::string Output(const Lines& lines) {
    std::string output;
    for (const std::string& line : lines) {
        output += line + "\r\n";
    }
    return output;
}

std::string Printed(const std::wstring& text) {
    return OString(text.c_str()).Narrow();
}

RunResult RunAfresh(const Words& words) {
    kemba::ApplicationSettings& settings = kemba::TheProcessObjects().settings;
    settings.allPrinters = settings.quiet = false;
    settings.printerNames.RemoveAll();
    return kit::RunWords(kemba::RunKemba, words);
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

} // namespace whole_run
