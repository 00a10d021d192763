// The table that names every command and its help topic.
#pragma once

#include <span>

#include "cli/Dispatcher.h"

namespace kemba {

/// Every command, in the order in which the words are tried.
std::span<const CommandRow> TheCommands();

} // namespace kemba
