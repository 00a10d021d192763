// What kemba prints, as tests write it down.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "core/OString.h"

namespace kit {

using Words = std::vector<std::wstring>;
using Lines = std::vector<std::string>;

inline constexpr char kUnsupported[] = "The command is unsupported on this printer.";

/// The text in the code page of the output.
inline std::string Printed(const std::wstring& text) {
    return OString(text.c_str()).Narrow();
}

/// The lines as the program prints them, each ended by CR LF.
inline std::string Output(const Lines& lines) {
    std::string output;
    for (const std::string& line : lines) {
        output += line + "\r\n";
    }
    return output;
}

/// The output of a command over printers: its lines between the two that frame them.
inline std::string Framed(const std::string& command, const Lines& lines) {
    return "Executing '" + command + "' command.\r\n" + Output(lines) + "Finished processing command.\r\n";
}

/// What the error printer shows of a status without further information.
Lines ErrorLines(HRESULT status);

} // namespace kit
