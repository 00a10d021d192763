// Help command: pages of its own, and those that the other commands show themselves.
#include "commands/Command_Help.h"

#include "cli/Dispatcher.h"
#include "commands/Command_Action.h"
#include "commands/Command_Export.h"
#include "commands/Command_Get.h"
#include "commands/Command_Import.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Send.h"
#include "commands/Command_Set.h"
#include "commands/Command_Settings.h"
#include "commands/Command_Version.h"

namespace kemba {
namespace {

/// Topics that are commands; "import" and "export" have pages though they are no command words.
constexpr CommandRow kCommandTopics[] = {
    {L"import", MakeCommand<Command_Import>},     {L"export", MakeCommand<Command_Export>},
    {L"action", MakeCommand<Command_Action>},     {L"send", MakeCommand<Command_Send>},
    {L"settings", MakeCommand<Command_Settings>}, {L"version", MakeCommand<Command_Version>},
    {L"queue", MakeCommand<Command_Queue>},       {L"set", MakeCommand<Command_Set>},
    {L"get", MakeCommand<Command_Get>},
};

} // namespace

bool Command_Help::Run() {
    if (GetArguments().empty()) {
        ShowGeneralHelp(GetConsole());
        return true;
    }
    const wchar_t* const topic = GetArguments().front();
    if (OCore::EqualsIgnoreCase(topic, L"commands")) {
        GetConsole().PrintMessage("help:commands");
    } else if (OCore::EqualsIgnoreCase(topic, L"usage")) {
        GetConsole().PrintMessage("help:usage");
    } else if (const CommandRow* const row = FindCommand(kCommandTopics, topic)) {
        row->make(GetSettings(), GetConsole(), GetArguments())->ShowHelp();
    } else if (OCore::EqualsIgnoreCase(topic, L"help")) {
        ShowGeneralHelp(GetConsole());
    } else {
        GetConsole().PrintMessage("error:NoHelp", topic);
    }
    return true;
}

void Command_Help::ShowGeneralHelp(ConsoleOutput& console) {
    console.PrintMessage("help:help");
}

} // namespace kemba
