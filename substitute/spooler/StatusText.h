// A printer's state in words.
#pragma once

#include <windows.h>

#include <string>

namespace kemba::substitute {

/// One line in the words of the Windows print queue: every status bit in ascending order, separated by ", ";
/// unknown bits together as "Unknown status 0x..."; "Offline" also when the attributes say that the printer
/// is worked offline; "Ready" when nothing is to be said; then the number of jobs, if any.
std::wstring StatusText(DWORD status, DWORD attributes, DWORD jobs);

} // namespace kemba::substitute
