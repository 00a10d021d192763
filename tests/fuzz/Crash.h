// What ends the program, said before it ends.
#pragma once

namespace kit {

/// From now on an access violation, an instruction that traps, a failed assertion of the library and an
/// uncaught exception are reported on standard error in one line, and end the process at once with status 3.
/// `report`, if any, is called after that line.
void ReportCrashes(void (*report)());

/// Reports it and ends the process in the same way. Allocates nothing.
[[noreturn]] void Crash(const char* what);

} // namespace kit
