// The life of one invocation.
#pragma once

namespace kemba {

/// Runs the command line, element 0 being the program's path, and returns the exit status: 0 success or a
/// printed automation failure, 1 no word or "/p" without a name, 2 a failed command.
int RunKemba(int argumentCount, wchar_t* arguments[]);

} // namespace kemba
