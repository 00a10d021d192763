// What a module of the process holds: memory, texts, registry keys, handles, printers.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kit {

/// How many of each the module got through its imports and has not given back.
struct Holdings {
    long heapBlocks = 0;  ///< malloc, calloc, realloc, and so new
    long localBlocks = 0; ///< LocalAlloc, and FormatMessageW where it makes the buffer
    long texts = 0;       ///< BSTRs that the module made, less all that it freed
    long registryKeys = 0;
    long handles = 0; ///< files, events, semaphores, mutexes and the like
    long printers = 0;
};

/// Asked before each allocation, with the name of the call; false makes it fail.
using AllocationGate = bool (*)(const char* call);

/// From now on counts what the module gets and gives back; one module, once. Calls that the module finds
/// through GetProcAddress, as delayed imports are, count as well.
void WatchHoldings(HMODULE module, AllocationGate gate = nullptr);

/// What the watched module holds beyond what it held when the watch began.
Holdings Held();
/// For a module that is put back to an earlier state, in which it held that.
void SetHeld(const Holdings& held);

/// A readable line for each kind of which `after` has not as many as `before`.
std::vector<std::string> Differences(const Holdings& before, const Holdings& after);

} // namespace kit
