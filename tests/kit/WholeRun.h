// Runs of the program's entry point inside the test process.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kit {

/// The entry point: argument count, arguments with the program path first; returns the exit status.
using EntryPoint = std::function<int(int argumentCount, wchar_t* arguments[])>;

struct RunResult {
    int status = 0;
    std::string output; ///< the bytes that reached the C runtime's standard output
};

/// Runs the entry point with the words after the program path "kemba". An exception of the entry point comes
/// through.
RunResult RunWords(const EntryPoint& entryPoint, const std::vector<std::wstring>& words);

} // namespace kit
