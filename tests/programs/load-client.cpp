// One of many clients at once: runs whole command lines against the registered server and checks each.
//
//     load-client COMMANDS PRINTER ...     exit status 0 when every output and status was as it must be
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "cli/main/EntryPoint.h"
#include "cli/main/ProcessObjects.h"
#include "tests/kit/Printed.h"
#include "tests/kit/WholeRun.h"

using namespace kit;

namespace {

/// A fresh process's settings for each run.
RunResult Run(const std::vector<std::wstring>& words) {
    kemba::TheProcessObjects().settings.printerNames.RemoveAll();
    return RunWords(kemba::RunKemba, words);
}

} // namespace

int wmain(int argumentCount, wchar_t* arguments[]) {
    const std::vector<std::wstring> printers(arguments + 2, arguments + argumentCount);
    const unsigned long commands = std::wcstoul(arguments[1], nullptr, 10);
    const wchar_t* const fields[] = {L"comment", L"location", L"status", L"portname", L"sharename"};
    unsigned long failures = 0;
    for (unsigned long number = 0; number < commands; ++number) {
        const std::wstring& printer = printers[number % printers.size()];
        const auto run = Run({L"/p", printer, L"get", fields[number % std::size(fields)]});
        const std::string begin = "Executing 'Get' command.\r\n" + Printed(printer) + ": ";
        const std::string end = "\r\nFinished processing command.\r\n";
        if (run.status != 0 || !run.output.starts_with(begin) || !run.output.ends_with(end)) {
            ++failures;
            std::fprintf(stderr, "command %lu: status %d: %s\n", number, run.status, run.output.c_str());
        }
    }
    return failures == 0 ? 0 : 1;
}
