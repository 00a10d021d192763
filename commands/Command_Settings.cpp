// Settings command.
#include "commands/Command_Settings.h"

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "cli/Command_Base.h"
#include "cli/PrinterSelection.h"
#include "commands/Command_Export.h"
#include "commands/Command_Import.h"
#include "core/OArray.h"
#include "core/OString.h"

namespace kemba {

bool Command_Settings::Run() {
    OStringArray printerNames; // only to check the selection: the sub-action makes it again
    if (!SelectPrinters(GetSettings(), printerNames, GetConsole())) {
        return false;
    }
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    const wchar_t* const word = GetArguments().front();
    m_subArguments.assign(GetArguments().begin() + 1, GetArguments().end());
    if (OCore::EqualsIgnoreCase(word, L"import")) {
        return Command_Import(GetSettings(), GetConsole(), m_subArguments).Run();
    }
    if (OCore::EqualsIgnoreCase(word, L"export")) {
        return Command_Export(GetSettings(), GetConsole(), m_subArguments).Run();
    }
    if (OCore::EqualsIgnoreCase(word, L"reset")) {
        return Command_Base::Run();
    }
    GetConsole().PrintMessage("error:CommandUnknown", word);
    return false;
}

void Command_Settings::ShowHelp() {
    GetConsole().PrintMessage("help:settings");
}

bool Command_Settings::Execute(const OString& printerName) {
    try {
        const auto automation = ActivateForPrinter(printerName);
        {
            const auto settings = CallForObject(automation, &IDriverAutomation::GetSettings);
            Call(settings, &IDriverSettings::ResetSettings, OwnedVariant::Omitted().Get());
        }
        GetConsole().PrintMessage("text:SettingsReset", printerName);
    } catch (const ComError&) {
        GetConsole().PrintMessage("error:CommandNotSupported");
    }
    return true;
}

OString Command_Settings::GetName() const {
    return L"Settings";
}

} // namespace kemba
