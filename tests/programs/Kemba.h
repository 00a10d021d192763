// kemba.exe as the tests of the programs start it.
#pragma once

#include <string>
#include <vector>

#include "core/OString.h"
#include "tests/kit/ProcessRun.h"

namespace kit {

using Words = std::vector<std::wstring>;

inline ProcessResult Kemba(const Words& words, const ProcessOptions& options = {}) {
    return RunProgram(L"kemba.exe", words, options);
}

/// The text in the code page of the output.
inline std::string Printed(const std::wstring& text) {
    return OString(text.c_str()).Narrow();
}

/// A line between the two that frame a command over printers.
inline std::string Framed(const std::string& command, const std::string& lines) {
    return "Executing '" + command + "' command.\r\n" + lines + "Finished processing command.\r\n";
}

} // namespace kit
