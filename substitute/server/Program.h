// The server program's verbs.
#pragma once

#include "substitute/base/Failure.h"
#include "substitute/server/CommandLine.h"

namespace kemba::substitute {

/// Does what the words ask for and says so on standard output; serving returns when no client is left. The
/// program's exit status: 0, or 2 for words that are not understood. Throws Failure.
int RunProgram(const CommandLine& commandLine);

/// Writes why the program failed to standard error. The program's exit status.
int ReportFailure(const Failure& failure);

} // namespace kemba::substitute
