// A printer driver for Wine's spooler: its PostScript driver with a label printer's description.
#pragma once

namespace demo {

/// The driver's name, which is the printers' model name.
inline constexpr wchar_t kLabelDriver[] = L"Dock Label Printer";

/// Installs the driver unless it is installed; safe when several processes do it at once.
/// Throws std::runtime_error with the system's error number.
void InstallLabelDriver();

} // namespace demo
