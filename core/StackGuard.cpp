// What functions compiled with a stack protector refer to, without the library that would write to the
// console.
#include <windows.h>
#include <ntsecapi.h>

#include <cstdint>

#include "core/ProgramEnd.h"

// The compiler knows these names. NOLINTBEGIN(bugprone-reserved-identifier,cert-*)
extern "C" {

/// What stands between a function's arrays and its return address; chosen before any function of this program
/// runs.
std::uintptr_t __stack_chk_guard = 0;

[[noreturn]] void __stack_chk_fail() {
    OCore::EndProgram();
}
}

namespace {

/// The first of all constructors; it has no guard itself, for it changes the one that it would be compared
/// with.
[[gnu::constructor(101)]] __attribute__((no_stack_protector)) void ChooseGuard() {
    if (!RtlGenRandom(&__stack_chk_guard, sizeof(__stack_chk_guard))) {
        LARGE_INTEGER ticks;
        QueryPerformanceCounter(&ticks);
        __stack_chk_guard =
            static_cast<std::uintptr_t>(ticks.QuadPart) * 0x9E3779B97F4A7C15U ^ GetCurrentProcessId();
    }
}

} // namespace
// NOLINTEND(bugprone-reserved-identifier,cert-*)
