// Carrying out an action, or asking whether it can be done.
#include "substitute/actions/ActionPerformer.h"

#include "substitute/actions/ActionTable.h"
#include "substitute/base/Failure.h"
#include "substitute/spooler/PrintJob.h"

namespace kemba::substitute {
namespace {

ActionOutcome SendBytes(const ActionProfiles& profiles, const Printer& printer, const Action& action,
                        bool execute) {
    const auto profile = profiles.Find(printer.GetName(), printer.Describe().modelName);
    const auto entry = profile ? profile->find(action.code) : ActionProfile::const_iterator();
    if (!profile || entry == profile->end()) {
        return {};
    }
    if (execute) {
        PrintJob job(printer, action.word);
        job.Write(entry->second);
        job.Finish();
    }
    return {.supported = true, .displays = false};
}

ActionOutcome ShowDialog(const Printer& printer, const Action& action, bool execute) {
    if (!printer.CanShowDialogs()) {
        if (!execute) {
            return {};
        }
        throw WindowsFailure(std::wstring(L"the dialog of action ") + action.word +
                                 L" cannot be shown without an interactive desktop",
                             ERROR_REQUIRES_INTERACTIVE_WINDOWSTATION);
    }
    if (execute) {
        const std::wstring what = std::wstring(L"showing the dialog of action ") + action.word;
        action.kind == ActionKind::Properties ? printer.ShowProperties(what) : printer.ShowQueue(what);
    }
    return {.supported = true, .displays = true};
}

} // namespace

ComPtr<IActionRequest> RequestFrom(const VARIANT& argument) {
    VARIANT plain = {};
    void* request = nullptr;
    if (SUCCEEDED(VariantCopyInd(
            &plain, const_cast<VARIANT*>(&argument)))) { // scripts pass a reference to a variable
        if ((plain.vt == VT_DISPATCH || plain.vt == VT_UNKNOWN) && plain.punkVal &&
            FAILED(plain.punkVal->QueryInterface(kActionRequest, &request))) {
            request = nullptr;
        }
        VariantClear(&plain);
    }
    if (!request) {
        throw Failure{E_INVALIDARG, L"the request is no DriverActions object of this server"};
    }
    return ComPtr<IActionRequest>(static_cast<IActionRequest*>(request));
}

ActionOutcome PerformActionOn(const ActionProfiles& profiles, const Printer& printer, LONG code,
                              bool execute) {
    const Action* const action = FindAction(code);
    switch (action ? action->kind : ActionKind::None) {
    case ActionKind::FromProfile: return SendBytes(profiles, printer, *action, execute);
    case ActionKind::Properties:
    case ActionKind::Queue: return ShowDialog(printer, *action, execute);
    case ActionKind::None: break;
    }
    return {};
}

} // namespace kemba::substitute
