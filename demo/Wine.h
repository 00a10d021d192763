// Whether the program runs on Wine, whose spooler lacks some things and takes printers in its own way.
#pragma once

#include <string>

namespace demo {

/// Wine's version; empty on Windows.
std::string WineVersion();

/// The one question that decides how printers are made, and what a test may ask of them.
bool IsWine();

} // namespace demo
