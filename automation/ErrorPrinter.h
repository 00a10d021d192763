// Prints an automation failure that no command has handled.
#pragma once

#include "automation/ComError.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// Prints the status's text and, where the server gave them, its source and a line for its description.
void PrintComError(ConsoleOutput& console, const ComError& error);

} // namespace kemba
