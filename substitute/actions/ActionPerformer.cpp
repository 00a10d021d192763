// Carrying out an action, or asking whether it can be done.
#include "substitute/actions/ActionPerformer.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "automation/Actions.h"
#include "automation/Owners.h"
#include "substitute/actions/ActionKind.h"
#include "substitute/actions/ActionProfile.h"
#include "substitute/actions/ActionRequest.h"
#include "substitute/base/Failure.h"
#include "substitute/base/VariantArgument.h"
#include "substitute/spooler/PrintJob.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {
namespace {

ActionOutcome SendBytes(const ActionProfiles& profiles, const Printer& printer, const Action& action,
                        bool execute) {
    const auto profile = profiles.Find(printer.Name(), printer.Describe().modelName);
    const auto entry =
        profile ? profile->find(static_cast<LONG>(action.code)) : ActionProfile::const_iterator();
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

/// The object that the argument holds or refers to, still the caller's; null when there is none.
IUnknown* ObjectIn(const VARIANT& argument) {
    switch (argument.vt) {
    case VT_DISPATCH:
    case VT_UNKNOWN: return argument.punkVal;
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN: return argument.ppunkVal ? *argument.ppunkVal : nullptr;
    default: return nullptr;
    }
}

ActionOutcome ShowDialog(const Printer& printer, const Action& action, ActionKind dialog, bool execute) {
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
        dialog == ActionKind::Properties ? printer.ShowProperties(what) : printer.ShowQueue(what);
    }
    return {.supported = true, .displays = true};
}

} // namespace

ComPtr<IActionRequest> RequestFrom(const VARIANT& argument) {
    IUnknown* const object = ObjectIn(BehindReference(argument));
    void* request = nullptr;
    if (!object || FAILED(object->QueryInterface(kActionRequest, &request)) || !request) {
        throw Failure{E_INVALIDARG, L"the request is no DriverActions object of this server"};
    }
    return ComPtr<IActionRequest>(static_cast<IActionRequest*>(request));
}

ActionOutcome PerformActionOn(const ActionProfiles& profiles, const Printer& printer, LONG code,
                              bool execute) {
    const auto* const action = std::ranges::find(kActions, ActionCode{code}, &Action::code);
    const std::optional<ActionKind> kind = KindOf(ActionCode{code});
    if (action == std::end(kActions) || !kind) {
        return {};
    }
    return *kind == ActionKind::FromProfile ? SendBytes(profiles, printer, *action, execute)
                                            : ShowDialog(printer, *action, *kind, execute);
}

} // namespace kemba::substitute
