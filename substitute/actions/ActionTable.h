// The driver actions that this server carries out, by their codes, and how.
#pragma once

#include <windows.h>

#include <string_view>

namespace kemba::substitute {

enum class ActionKind {
    FromProfile, ///< what the printer's action profile says
    Properties,  ///< the dialog of the printer's properties
    Queue,       ///< the window of the printer's queue
};

struct Action {
    LONG code;
    const wchar_t* word;
    ActionKind kind;
};

/// The row of an action by its code; null for those that nothing on the print spooler does, and for a code
/// that is nobody's.
const Action* FindAction(LONG code);

/// The row of an action that a profile may define, by its word, whatever its case; null for any other word.
const Action* FindProfileAction(std::string_view word);

} // namespace kemba::substitute
