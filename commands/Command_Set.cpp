// Set command.
#include "commands/Command_Set.h"

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "commands/Reporting.h"

namespace kemba {
namespace {

struct Field {
    const wchar_t* word;
    HRESULT (IDriverAutomation::*write)(BSTR);
};

constexpr Field kFields[] = {
    {L"comment", &IDriverAutomation::PutComment},
    {L"location", &IDriverAutomation::PutLocation},
    {L"sharename", &IDriverAutomation::PutShareName},
};

} // namespace

void Command_Set::ShowHelp() {
    GetConsole().PrintMessage("help:set");
}

bool Command_Set::Execute(const OString& printerName) {
    if (GetArguments().size() < 2) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    return ExecuteReporting(GetConsole(), m_rejectedArgument, [&] {
        const auto automation = ActivateForPrinter(printerName);
        const OwnedBstr value = TextArgument(GetArguments()[1]);
        // Bound first: a wrong word is rejected only where the printer can be reached.
        const Field& field = RequireRow(kFields, GetArguments().front(), m_rejectedArgument);
        Call(automation, field.write, value.Get());
    });
}

OString Command_Set::GetName() const {
    return L"Set";
}

} // namespace kemba
