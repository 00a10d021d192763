// Action command.
#include "commands/Command_Action.h"

#include "automation/Actions.h"
#include "automation/Activation.h"
#include "automation/ComError.h"
#include "automation/Owners.h"
#include "core/OString.h"
#include "core/WordTable.h"

namespace kemba {
namespace {

bool IsQueryOption(const wchar_t* word) {
    return OCore::EqualsIgnoreCase(word, L"-n") || OCore::EqualsIgnoreCase(word, L"/n");
}

bool CallForFlag(const ComPtr<IDriverActions>& request, HRESULT (IDriverActions::*operation)(VARIANT_BOOL*)) {
    VARIANT_BOOL flag = VARIANT_FALSE;
    Call(request, operation, &flag);
    return flag != VARIANT_FALSE;
}

} // namespace

void Command_Action::ShowHelp() {
    GetConsole().PrintMessage("help:action");
}

bool Command_Action::Execute(const OString& printerName) {
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    ScanArguments();
    try {
        if (!m_action) {
            throw L"error:ActionUndefined";
        }
        Perform(printerName);
        return true;
    } catch (const ComError&) {
        // The catalogue has no such section: an empty line is what a failure shows, on purpose.
        GetConsole().PrintMessage("error:ActionNotSupported", m_action->word);
        return true;
    } catch (const wchar_t* key) {
        GetConsole().PrintMessage(key);
        return true;
    } catch (...) {
        GetConsole().PrintMessage("error:Unspecified");
        return false;
    }
}

OString Command_Action::GetName() const {
    return L"Action";
}

/// Takes in all words, the last action word winning; unknown ones are ignored.
void Command_Action::ScanArguments() {
    for (const wchar_t* const word : GetArguments()) {
        if (IsQueryOption(word)) {
            m_queryOnly = true;
            continue;
        }
        if (const Action* const action = OCore::FindRow(kActions, word)) {
            m_action = action;
        }
    }
}

void Command_Action::Perform(const OString& printerName) {
    GetConsole().PrintText(printerName + L":");
    const auto automation = ActivateForPrinter(printerName);
    const auto request = Activate<DriverActions, IDriverActions>();
    // 1 and not VARIANT_TRUE, on purpose: servers take any value but 0 as true.
    Call(request, &IDriverActions::PutExecute, static_cast<VARIANT_BOOL>(m_queryOnly ? 0 : 1));
    Call(automation, &IDriverAutomation::PerformAction, static_cast<LONG>(m_action->code),
         OwnedVariant(request.Get()).Get());

    if (!m_queryOnly && CallForFlag(request, &IDriverActions::GetSupported)) {
        GetConsole().PrintMessage("text:ActionComplete");
        return;
    }
    // Also reached by an action that was carried out but not reported as such, a dialog for one: both
    // questions then are asked after the action.
    const char* key = "text:ActionNotSupported";
    if (CallForFlag(request, &IDriverActions::GetSupported)) {
        key = "text:ActionIsSupported";
    }
    if (CallForFlag(request, &IDriverActions::GetDisplaysInterface)) {
        key = "text:ActionDisplayInterface";
    }
    GetConsole().PrintMessage(key, m_action->word);
}

} // namespace kemba
