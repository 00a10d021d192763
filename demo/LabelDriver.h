// The driver of the printers that are made: on Wine its PostScript driver with a label printer's description,
// on Windows one that comes with the system and sends what it is given.
#pragma once

namespace demo {

/// The driver's name, which is the printers' model name.
const wchar_t* LabelDriverName();

/// Installs the driver unless it is installed; safe when several processes do it at once. Throws SpoolerError
/// with the system's error number; on Windows it takes an administrator.
void InstallLabelDriver();

/// Whether a driver of that name is installed.
bool IsDriverInstalled(const wchar_t* name);

/// Uninstalls the driver; false while a printer has it, or the spooler still holds on to it.
bool RemoveDriver(const wchar_t* name);

} // namespace demo
