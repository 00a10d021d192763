// A driver's default device mode, which the spooler does not tell.
#pragma once

#include <windows.h>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/PrinterHandle.h"

namespace kemba::substitute {

/// The device mode of a printer that nobody has set up yet: what the driver's configuration library says, as
/// long as it lies in the spooler's folder of drivers, or else what the spooler gives a hidden printer of the
/// same driver, which is made for it and deleted again; that needs the right to add printers. Throws Failure.
Bytes ReadDefaultMode(const PrinterHandle& handle);

} // namespace kemba::substitute
