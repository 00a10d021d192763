// The global options: "/p <name>", "/a", "/q" and the question mark.
#pragma once

#include "cli/ApplicationSettings.h"
#include "core/OArray.h"

namespace kemba {

/// Takes the global options out of `words`, wherever they stand, and records them in `settings`. False,
/// without a message, when "/p" is the last word.
bool ParseOptions(ApplicationSettings& settings, OStringArray& words);

} // namespace kemba
