// Import command.
#include "commands/Command_Import.h"

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "core/OFile.h"

namespace kemba {

void Command_Import::ShowHelp() {
    GetConsole().PrintMessage("help:import");
}

bool Command_Import::Execute(const OString& printerName) {
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    const OString path = GetArguments().front();
    if (!OFile::Exists(path)) {
        GetConsole().PrintMessage("error:FileNotFound");
        return false;
    }
    try {
        const auto automation = ActivateForPrinter(printerName);
        {
            const auto settings = CallForObject(automation, &IDriverAutomation::GetSettings);
            Call(settings, &IDriverSettings::ImportSettings, TextArgument(path.Wide()).Get(),
                 OwnedVariant::Omitted().Get());
        }
        GetConsole().PrintMessage("text:ImportSettingsImported", printerName);
    } catch (const ComError&) {
        GetConsole().PrintMessage("error:CommandNotSupported");
    }
    return true;
}

OString Command_Import::GetName() const {
    return L"Import";
}

} // namespace kemba
