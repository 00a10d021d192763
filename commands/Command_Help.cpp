// Help command: pages of its own, and those that the other commands show themselves.
#include "commands/Command_Help.h"

#include "cli/Dispatcher.h"
#include "commands/CommandTable.h"
#include "core/OString.h"
#include "core/WordTable.h"

namespace kemba {

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
    } else if (const CommandRow* const row = OCore::FindRow(TheCommands(), topic, &CommandRow::topic)) {
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
