// Send command.
#include "commands/Command_Send.h"

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "core/OFile.h"

namespace kemba {

void Command_Send::ShowHelp() {
    GetConsole().PrintMessage("help:send");
}

bool Command_Send::Execute(const OString& printerName) {
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    // No third handler, which get, set, queue and action have: whatever else happens ends the run in
    // Command_Base.
    try {
        const OString path = GetArguments().front();
        if (!OFile::Exists(path)) {
            throw L"error:FileNotFound";
        }
        const auto automation = ActivateForPrinter(printerName);
        Call(automation, &IDriverAutomation::SendFile, TextArgument(path.Wide()).Get(),
             TextArgument(L"").Get());
        GetConsole().PrintMessage("text:FileSent", printerName);
        return true;
    } catch (const ComError&) {
        GetConsole().PrintMessage("error:CommandNotSupported");
        return true;
    } catch (const wchar_t* key) {
        GetConsole().PrintMessage(key);
        return false;
    }
}

OString Command_Send::GetName() const {
    return L"Send";
}

} // namespace kemba
