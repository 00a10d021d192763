// A heap of the program's own that can be put back to how it was.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kit {

/// Takes the place of the C runtime's heap for the module; what it gave before is still freed there. Memory
/// is given out once, filled with a pattern, and so it is when it is freed.
void UseArena(HMODULE module);

/// How much of the arena is in use, in bytes.
std::size_t ArenaSize();
/// The arena's first byte.
char* ArenaStart();
/// Forgets all that was given beyond that size.
void ShrinkArena(std::size_t size);

} // namespace kit
