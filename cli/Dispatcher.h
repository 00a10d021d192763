// From the command word to a run of its command.
#pragma once

#include <memory>
#include <span>

#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "core/OArray.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// What the user calls a command, and its class.
struct CommandRow {
    const wchar_t* word;  ///< the command word, in lower case; null for what only another command starts
    const wchar_t* topic; ///< the topic of its help page, in lower case; null where it has none
    std::unique_ptr<Command_Base> (*make)(const ApplicationSettings&, ConsoleOutput&, const Arguments&);
};

/// Makes a command of the given class; for the rows of command tables.
template<class Command>
std::unique_ptr<Command_Base> MakeCommand(const ApplicationSettings& settings, ConsoleOutput& console,
                                          const Arguments& arguments) {
    return std::make_unique<Command>(settings, console, arguments);
}

/// Runs the command that the first word names, with the other words as its arguments, and returns its result.
/// False, with a message, when there is no word or no such command. What the command's own `Run` throws
/// passes through.
bool Dispatch(std::span<const CommandRow> table, const ApplicationSettings& settings, ConsoleOutput& console,
              const OStringArray& words);

} // namespace kemba
