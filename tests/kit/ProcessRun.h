// Runs of built programs as processes of their own.
#pragma once

#include <windows.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/kit/Owners.h"

namespace kit {

struct ProcessOptions {
    std::map<std::wstring, std::wstring> environment; ///< variables beside, or in place of, the test's own
    bool outputToFile = false;                        ///< standard output is a file instead of a pipe
    std::optional<HANDLE> output;                     ///< standard output instead; inheritable, null for none
    std::wstring desktop;                             ///< "station\\desktop" in place of the test's own
    std::chrono::milliseconds timeout = std::chrono::seconds(30);
};

struct ProcessResult {
    DWORD status = 0;      ///< all 32 bits of the exit status
    bool timedOut = false; ///< the process was ended for running too long; the status is then of no meaning
    std::string output;    ///< bytes of standard output
    std::string errors;    ///< bytes of standard error
};

/// Path of a built program, "kemba.exe" for one: in the folder that the environment variable KEMBA_PROGRAMS
/// names, and without that in the folder of the running test program. An absolute path stands for itself.
std::wstring ProgramPath(std::wstring_view name);

/// Starts a command line that begins with the program's path, and hands nothing over to it; gives the
/// process. Throws std::runtime_error with the system's error number.
UniqueHandle StartProgram(std::wstring line);

/// Starts a program, which ProgramPath finds, with the words and waits for its end; standard input is empty.
/// Throws std::runtime_error with the system's error number when it cannot be started.
ProcessResult RunProgram(std::wstring_view name, const std::vector<std::wstring>& words,
                         const ProcessOptions& options = {});

} // namespace kit
