// Export command.
#include "commands/Command_Export.h"

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "cli/PrinterSelection.h"
#include "core/OArray.h"

namespace kemba {

bool Command_Export::Run() {
    OStringArray printerNames;
    if (!SelectPrinters(GetSettings(), printerNames, GetConsole())) {
        return false;
    }
    GetConsole().PrintMessage("text:Processing", GetName());
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    if (printerNames.GetSize() > 1) {
        GetConsole().PrintMessage("error:MultiplePrintersNotSupported");
        return false;
    }
    try {
        Export(printerNames[0]);
    } catch (const ComError&) {
        // Unlike an import, an export that the server refuses has failed.
        GetConsole().PrintMessage("error:CommandNotSupported");
        return false;
    }
    GetConsole().PrintMessage("text:FinishProcessingCommand");
    return true;
}

void Command_Export::ShowHelp() {
    GetConsole().PrintMessage("help:export");
}

OString Command_Export::GetName() const {
    return L"Export";
}

void Command_Export::Export(const OString& printerName) {
    const auto automation = ActivateForPrinter(printerName);
    {
        const auto settings = CallForObject(automation, &IDriverAutomation::GetSettings);
        Call(settings, &IDriverSettings::ExportSettings, TextArgument(GetArguments().front()).Get(),
             OwnedVariant::Omitted().Get());
    }
    GetConsole().PrintMessage("text:ExportSettingsExported", printerName);
}

} // namespace kemba
