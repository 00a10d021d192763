// Runs of kemba under shortage, each a process of its own.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/kit/Printed.h"

namespace kit {

/// Which allocations fail.
struct Point {
    long first = 0;     ///< which allocation is the first to fail, from 1; 0: none fails
    bool lasts = false; ///< all that follow fail too

    bool operator==(const Point&) const = default;

    /// "once:7", "lasting:7", or empty.
    std::string Text() const;
};

/// What was to be seen of a run.
struct Outcome {
    DWORD status = 0;
    bool timedOut = false;
    std::string output;
    std::string errors;              ///< what came on standard error
    std::vector<std::string> calls;  ///< of the server, in order
    long allocations = 0;            ///< that were asked for
    long allocationsAtStart = 0;     ///< of these, before the program's first line
    long allocationsAtReturn = 0;    ///< of these, up to its last line
    std::string refusedCall;         ///< the call that failed first, empty without one
    bool isComplete = false;         ///< the program came to its ordinary end; the rest holds only then
    long heapBlocks = 0;             ///< still held at the end, those of process-wide objects included
    long handles = 0;                ///< the same
    std::vector<std::string> faults; ///< what else was not given back, or not balanced
};

/// Runs the words with that shortage. The server's calls that `failing` names fail; for its form see
/// FailingCalls in Library.cpp.
Outcome RunShort(const Words& words, const Point& point, const std::string& failing = {});

/// The same for many points at once, in a few processes: each run starts from the state in which the program
/// was at its first line, so no point may lie before that or after its last line.
std::vector<Outcome> RunAllShort(const Words& words, const std::vector<Point>& points,
                                 const std::string& failing);

/// The command by which the run is repeated from a prompt, in the project's folder.
std::string Repetition(const Words& words, const Point& point, const std::string& failing);

} // namespace kit
