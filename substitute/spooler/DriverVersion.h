// A driver's version in words.
#pragma once

#include <string>

#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// "a.b.c.d". A driver that gives no version has that of its program file; empty where that has none either.
std::wstring DriverVersionText(const DriverDescription& driver);

/// "provider, yyyy-mm-dd"; what is not known is left out.
std::wstring DriverDetailText(const DriverDescription& driver);

} // namespace kemba::substitute
