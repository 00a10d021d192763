// The table that names every command.
#pragma once

#include <span>

#include "cli/Dispatcher.h"

namespace kemba {

/// The command words in the order in which they are tried.
std::span<const CommandRow> TheCommands();

} // namespace kemba
