// What runs under shortage leave for whoever started them, in memory that both share.
#pragma once

#include <windows.h>

namespace kit {

/// The variables by which a process is told what to do; without any, its one run is undisturbed.
inline constexpr char kPointVariable[] = "KEMBA_SHORTAGE";         ///< "once:7", "lasting:7"
inline constexpr char kServerVariable[] = "KEMBA_SHORTAGE_SERVER"; ///< see FailingCalls in Library.cpp
inline constexpr char kBoardVariable[] = "KEMBA_SHORTAGE_BOARD";   ///< name of the shared memory

/// One run; zero-filled to begin with, but for the point. It is written while the run goes on, so that it
/// holds however that ends.
struct Record {
    LONG firstRefused; ///< which allocation is the first to fail, from 1; 0: none fails
    LONG isLasting;    ///< all that follow fail too

    LONG allocations;         ///< asked for so far
    LONG allocationsAtStart;  ///< of these, before the program's first line
    LONG allocationsAtReturn; ///< of these, up to its last line
    char refusedCall[32];     ///< the call that was refused first, empty without one
    LONG journalBytes;        ///< of the following
    char journal[8192];       ///< the calls of the server's operations, each ended by a line feed
    LONG isComplete;          ///< the run has come to its ordinary end; the rest holds only then
    LONG heapBlocks;          ///< still held, those of process-wide objects included
    LONG handles;             ///< the same
    char faults[2048];        ///< what else was not given back or not balanced, a line each
};

/// Several runs in one process.
struct RepeatedRun {
    Record record;
    LONG isEnded;     ///< the rest holds only then
    LONG status;      ///< what would be the process's
    LONG outputBegin; ///< the run's part of the process's output, in bytes
    LONG outputEnd;
};

/// The shared memory: one run, or several of them one after the other.
struct Board {
    static constexpr LONG kMostRuns = 256;

    Record single;
    LONG runs; ///< 0: only `single`
    RepeatedRun repeated[kMostRuns];
};

} // namespace kit
