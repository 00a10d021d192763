// Command words, help topics and classes.
#include "commands/CommandTable.h"

#include <span>

#include "cli/Dispatcher.h"
#include "commands/Command_Action.h"
#include "commands/Command_Export.h"
#include "commands/Command_Get.h"
#include "commands/Command_Help.h"
#include "commands/Command_Import.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Send.h"
#include "commands/Command_Set.h"
#include "commands/Command_Settings.h"
#include "commands/Command_Version.h"

namespace kemba {
namespace {

constexpr CommandRow kCommands[] = {
    {L"settings", L"settings", MakeCommand<Command_Settings>},
    {nullptr, L"import", MakeCommand<Command_Import>},
    {nullptr, L"export", MakeCommand<Command_Export>},
    {L"help", nullptr, MakeCommand<Command_Help>},
    {L"?", nullptr, MakeCommand<Command_Help>},
    {L"action", L"action", MakeCommand<Command_Action>},
    {L"send", L"send", MakeCommand<Command_Send>},
    {L"version", L"version", MakeCommand<Command_Version>},
    {L"queue", L"queue", MakeCommand<Command_Queue>},
    {L"get", L"get", MakeCommand<Command_Get>},
    {L"set", L"set", MakeCommand<Command_Set>},
};

} // namespace

std::span<const CommandRow> TheCommands() {
    return kCommands;
}

} // namespace kemba
