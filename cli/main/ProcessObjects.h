// The objects that live as long as the process.
#pragma once

#include <memory>

#include "cli/ApplicationSettings.h"
#include "core/OEventLog.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// Built in this order before the entry point runs.
struct ProcessObjects {
    std::shared_ptr<OEventLog> eventLog; ///< null until the entry point opens it
    ApplicationSettings settings;
    ConsoleOutput console{settings.quiet};
};

/// The process's objects; they are never torn down.
ProcessObjects& TheProcessObjects();

} // namespace kemba
