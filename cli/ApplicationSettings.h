// What the global options said: which printers, and whether to be quiet.
#pragma once

#include "core/OArray.h"

namespace kemba {

/// The record that the option parser fills and everybody else reads.
struct ApplicationSettings {
    bool allPrinters = false;
    bool quiet = false;
    OStringArray printerNames; ///< in command-line order, duplicates kept
};

} // namespace kemba
