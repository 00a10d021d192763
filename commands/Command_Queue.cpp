// Queue command.
#include "commands/Command_Queue.h"

#include "automation/Activation.h"
#include "commands/Reporting.h"

namespace kemba {
namespace {

struct Action {
    const wchar_t* word;
    HRESULT (IPrinterQueue::*perform)();
};

constexpr Action kActions[] = {
    {L"Pause", &IPrinterQueue::Pause},
    {L"Resume", &IPrinterQueue::Resume},
    {L"Purge", &IPrinterQueue::Purge},
};

} // namespace

void Command_Queue::ShowHelp() {
    // The catalogue's section is written in lower case; keys are looked up ignoring case.
    GetConsole().PrintMessage("help:Queue");
}

bool Command_Queue::Execute(const OString& printerName) {
    if (GetArguments().empty()) {
        GetConsole().PrintMessage("error:NumberOfArguments");
        return false;
    }
    return ExecuteReporting(GetConsole(), m_rejectedArgument, [&] {
        const auto automation = ActivateForPrinter(printerName);
        // The queue is fetched before the word is looked at; a queue that is missing matters only to a known
        // word.
        const auto queue = CallForObject(automation, &IDriverAutomation::GetPrinterQueue);
        const Action& action = RequireRow(kActions, GetArguments().front(), m_rejectedArgument);
        Call(queue, action.perform);
    });
}

OString Command_Queue::GetName() const {
    return L"Queue";
}

} // namespace kemba
