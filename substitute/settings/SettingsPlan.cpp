// Making changes, and undoing them.
#include "substitute/settings/SettingsPlan.h"

#include <functional>
#include <new>
#include <string>
#include <vector>

#include "substitute/base/Failure.h"

namespace kemba::substitute {
namespace {

/// Makes one call; it may run out of memory before it reaches the spooler.
DWORD Attempt(const std::function<DWORD()>& call) noexcept {
    try {
        return call();
    } catch (...) {
        return ERROR_OUTOFMEMORY;
    }
}

/// Undoes one change; what could not be undone is added to `trouble` in words.
void Undo(const SettingsStep& step, std::wstring& trouble) noexcept {
    const DWORD error = Attempt(step.undo);
    try {
        if (error != ERROR_SUCCESS) {
            trouble += L"; " + WindowsFailure(step.what + L" could not be undone", error).reason;
        }
    } catch (const std::bad_alloc&) {
        return; // the others are undone all the same
    }
}

} // namespace

void CarryOut(const std::vector<SettingsStep>& steps) {
    std::vector<const SettingsStep*> made;
    made.reserve(steps.size()); // nothing may be thrown between a change and its note
    for (const SettingsStep& step : steps) {
        const DWORD error = Attempt(step.apply);
        if (error == ERROR_SUCCESS) {
            made.push_back(&step);
        } else if (!step.optional || error != ERROR_CALL_NOT_IMPLEMENTED) {
            std::wstring trouble;
            for (; !made.empty(); made.pop_back()) {
                Undo(*made.back(), trouble);
            }
            Failure failure = WindowsFailure(step.what + L" failed", error);
            failure.reason += trouble;
            throw failure;
        }
    }
}

} // namespace kemba::substitute
