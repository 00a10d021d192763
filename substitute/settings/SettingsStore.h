// One printer's settings: reading them, and changing them wholly or not at all.
#pragma once

#include "substitute/settings/Settings.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Each of these opens the printer with the rights that it needs, and holds its lock, so that nobody else's
/// half is read or left. They throw Failure.
Settings ReadSettings(const Printer& printer);

/// Makes the printer's settings those given, see docs/settings-file.md for what cannot be restored. Refuses
/// those of another driver. When a step fails, those before it are undone.
void ApplySettings(const Printer& printer, const Settings& settings);

/// Gives the printer the driver's default device mode, and the user, if there is one of the user's own.
void ResetSettings(const Printer& printer);

} // namespace kemba::substitute
