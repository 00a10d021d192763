// Whether a run under shortage ended as it may.
#pragma once

#include <string>
#include <vector>

#include "tests/shortage/CommandLines.h"
#include "tests/shortage/Run.h"

namespace kit {

/// How a program that cannot go on ends: at once and without a word.
inline constexpr DWORD kAbnormalEnd = 3;

/// What is wrong with a run, by its gravity.
enum class Wrong { Nothing, Hang, Crash, Word, WrongWork, WrongStatus, WrongOutput, NotGivenBack };

struct Verdict {
    Wrong wrong = Wrong::Nothing;
    std::string reason; ///< readable
};

/// The run's calls of the server with arguments that the program allocates for them, each with what makes it
/// fail as if the argument could not be allocated: such a failure counts as the call's.
struct RefusedArgument {
    std::string call;    ///< as journalled
    std::string failing; ///< see FailingCalls in Library.cpp
};
std::vector<RefusedArgument> ArgumentsOf(const Outcome& undisturbed);

/// The run as if its call was not made, because the argument could not be allocated. `refused` is the run in
/// which the call fails with E_OUTOFMEMORY.
Outcome WithoutCall(Outcome refused, const std::string& call);

/// Judges a run. `ways` are all the ordinary ways to end: the undisturbed run, and then those without a call
/// whose argument could not be allocated.
Verdict Judge(const Outcome& run, const std::vector<Outcome>& ways, Handling handling);

} // namespace kit
