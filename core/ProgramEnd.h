// The one end of a program that cannot go on: at once, with a status of its own, without a word.
#pragma once

#include <windows.h>

namespace OCore {

/// The exit status of every abnormal end: an exception that nobody catches, a broken stack, memory so short
/// that the runtime library itself cannot work.
inline constexpr UINT kAbnormalEnd = 3;

/// Ends the process with `kAbnormalEnd`. Nothing is flushed, torn down or written: standard error belongs to
/// nobody, and there may be no memory for anything.
[[noreturn]] inline void EndProgram() {
    TerminateProcess(GetCurrentProcess(), kAbnormalEnd);
    for (;;) { // the call does not come back for the process that asks
    }
}

/// For the first line of a program that links kemba_program_end. Until then each failing allocation ends the
/// process, because the start-up code of the runtime looks at none of its own; from then on it is the
/// caller's business.
void BeginProgram();

} // namespace OCore
