// From the global options to the names of the printers that a command works on.
#pragma once

#include "cli/ApplicationSettings.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// Fills `names` with all printers, the named ones that exist, or the default one. Unknown names are reported
/// on `console`. When no printer is left, that is reported too, and the result is false.
bool SelectPrinters(const ApplicationSettings& settings, OStringArray& names, ConsoleOutput& console);

/// The name of the system's default printer, or an empty text.
OString DefaultPrinterName();

} // namespace kemba
