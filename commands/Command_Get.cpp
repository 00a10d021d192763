// Get command.
#include "commands/Command_Get.h"

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "commands/Reporting.h"
#include "core/OString.h"

namespace kemba {
namespace {

struct Field {
    const wchar_t* word;
    OString (*read)(const ComPtr<IDriverAutomation>& automation);
};

template<HRESULT (IDriverAutomation::*Operation)(BSTR*)>
OString Read(const ComPtr<IDriverAutomation>& automation) {
    return CallForText(automation, Operation);
}

OString ReadStatus(const ComPtr<IDriverAutomation>& automation) {
    const auto information = CallForObject(automation, &IDriverAutomation::GetPrinterInformation);
    return CallForText(information, &IPrinterInformation::GetStatus);
}

constexpr Field kFields[] = {
    {L"portname", Read<&IDriverAutomation::GetPortName>},
    {L"modelname", Read<&IDriverAutomation::GetModelName>},
    {L"comment", Read<&IDriverAutomation::GetComment>},
    {L"location", Read<&IDriverAutomation::GetLocation>},
    {L"sharename", Read<&IDriverAutomation::GetShareName>},
    {L"status", ReadStatus},
};

} // namespace

void Command_Get::ShowHelp() {
    GetConsole().PrintMessage("help:get");
}

bool Command_Get::Execute(const OString& printerName) {
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    return ExecuteReporting(GetConsole(), m_rejectedArgument, [&] {
        const auto automation = ActivateForPrinter(printerName);
        // Bound first: a wrong word is rejected only where the printer can be reached.
        const Field& field = RequireRow(kFields, GetArguments().front(), m_rejectedArgument);
        GetConsole().PrintText(printerName + L": " + field.read(automation));
    });
}

OString Command_Get::GetName() const {
    return L"Get";
}

} // namespace kemba
