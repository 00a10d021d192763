// The command lines that are tried under shortage.
#pragma once

#include <ostream>
#include <vector>

#include "tests/kit/Printed.h"

namespace kit {

/// How a command ends when memory is short while it works on a printer, besides the ordinary and the abnormal
/// end.
enum class Handling {
    None,        ///< not at all: only abnormally
    Silent,      ///< status 2 without a word
    Finished,    ///< status 2 after the closing line
    Unspecified, ///< status 2 after "Unspecified error." and the closing line
    Either       ///< as either of the last two, by where it happens
};

struct CommandLine {
    const char* name; ///< in letters and digits
    std::vector<const wchar_t*> words;
    DWORD status; ///< without shortage
    Handling handling;
    const char* failing = ""; ///< the server's calls that fail; see FailingCalls in Library.cpp

    Words GetWords() const { return {words.begin(), words.end()}; }
};

/// How test names and failures show it.
inline void PrintTo(const CommandLine& line, std::ostream* output) {
    *output << line.name;
}

/// Every command in its forms, with the program's printers "Dock 1", the default one, and "Dock 2".
const std::vector<CommandLine>& AllCommandLines();

} // namespace kit
