// Which of the driver's actions this server carries out, and how.
#pragma once

#include <optional>

#include "automation/Actions.h"

namespace kemba::substitute {

enum class ActionKind {
    FromProfile, ///< what the printer's action profile says
    Properties,  ///< the dialog of the printer's properties
    Queue,       ///< the window of the printer's queue
};

/// Nothing for an action that nothing on the print spooler does, and for a code that is nobody's.
std::optional<ActionKind> KindOf(ActionCode code);

} // namespace kemba::substitute
