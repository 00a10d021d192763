// Changes of a printer that are made one after the other and undone when one of them fails.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace kemba::substitute {

/// One change; both calls answer a Win32 error code.
struct SettingsStep {
    std::wstring what; ///< in words, for the one who reads of its failure
    std::function<DWORD()> apply;
    std::function<DWORD()> undo;
    bool surelyUndone = true; ///< whether every system can undo it
    bool optional = false;    ///< ERROR_CALL_NOT_IMPLEMENTED from `apply` means that the change is left out
};

/// Makes all the changes in their order. When one fails, undoes what was made, latest first, and throws
/// Failure with the failed change's status; a change that could not be undone is named in its reason.
void CarryOut(const std::vector<SettingsStep>& steps);

} // namespace kemba::substitute
