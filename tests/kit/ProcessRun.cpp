// Runs of built programs as processes of their own.
#include "tests/kit/ProcessRun.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/kit/CommandLine.h"
#include "tests/kit/Environment.h"
#include "tests/kit/OutputChannel.h"
#include "tests/kit/Owners.h"

namespace kit {
namespace {

std::wstring FolderOfThisProgram() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring_view whole(path, length);
    return std::wstring(whole.substr(0, whole.find_last_of(L"\\/")));
}

/// Starts the line's program; throws std::runtime_error.
UniqueHandle Create(std::wstring& line, STARTUPINFOW& startup, BOOL inherits, wchar_t* environment) {
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, inherits, CREATE_UNICODE_ENVIRONMENT,
                        environment, nullptr, &startup, &started)) {
        throw std::runtime_error("the program cannot be started, error " + std::to_string(GetLastError()));
    }
    const UniqueHandle thread(started.hThread);
    return UniqueHandle(started.hProcess);
}

} // namespace

std::wstring ProgramPath(std::wstring_view name) {
    if (std::filesystem::path(name).is_absolute()) {
        return std::wstring(name);
    }
    const std::wstring folder = EnvironmentVariable(L"KEMBA_PROGRAMS");
    return (folder.empty() ? FolderOfThisProgram() : folder) + L"\\" + std::wstring(name);
}

UniqueHandle StartProgram(std::wstring line) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    return Create(line, startup, FALSE, nullptr);
}

ProcessResult RunProgram(std::wstring_view name, const std::vector<std::wstring>& words,
                         const ProcessOptions& options) {
    const std::wstring path = ProgramPath(name);
    std::wstring line = L"\"" + path + L"\"";
    if (!words.empty()) {
        line += L" " + MakeCommandLine(words);
    }
    std::wstring environment = EnvironmentBlock(options.environment);

    OutputChannel output(options.outputToFile);
    OutputChannel errors(false);
    const UniqueHandle input = OpenEmptyInput();
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    std::wstring desktop = options.desktop;
    startup.lpDesktop = desktop.empty() ? nullptr : desktop.data();
    startup.hStdInput = input.get();
    startup.hStdOutput = options.output.value_or(output.WriteEnd());
    startup.hStdError = errors.WriteEnd();
    const UniqueHandle process = Create(line, startup, TRUE, environment.data());

    ProcessResult result;
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(options.timeout.count());
    // A pipe holds little: it must be emptied while the program runs.
    while (WaitForSingleObject(process.get(), 5) == WAIT_TIMEOUT) {
        output.Drain();
        errors.Drain();
        if (GetTickCount64() >= end) {
            result.timedOut = true;
            TerminateProcess(process.get(), 1);
            WaitForSingleObject(process.get(), INFINITE);
        }
    }
    GetExitCodeProcess(process.get(), &result.status);
    result.output = output.Finish();
    result.errors = errors.Finish();
    return result;
}

} // namespace kit
