// Command words and their classes.
#include "commands/CommandTable.h"

#include "commands/Command_Action.h"
#include "commands/Command_Get.h"
#include "commands/Command_Help.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Send.h"
#include "commands/Command_Set.h"
#include "commands/Command_Settings.h"
#include "commands/Command_Version.h"

namespace kemba {
namespace {

constexpr CommandRow kCommands[] = {
    {L"settings", MakeCommand<Command_Settings>},
    {L"help", MakeCommand<Command_Help>},
    {L"?", MakeCommand<Command_Help>},
    {L"action", MakeCommand<Command_Action>},
    {L"send", MakeCommand<Command_Send>},
    {L"version", MakeCommand<Command_Version>},
    {L"queue", MakeCommand<Command_Queue>},
    {L"get", MakeCommand<Command_Get>},
    {L"set", MakeCommand<Command_Set>},
};

} // namespace

std::span<const CommandRow> TheCommands() {
    return kCommands;
}

} // namespace kemba
