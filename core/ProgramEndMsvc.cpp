// ProgramEnd.cpp for MSVC, whose runtime library offers by calls what the linker does for the other.
#include <csignal>
#include <cstdint>
#include <cstdlib>

#include "core/ProgramEnd.h"

namespace {

void OnAbort(int /*signal*/) {
    OCore::EndProgram();
}

/// A call with a wrong argument fails, as in the older runtime library, and the program goes on.
void OnInvalidArgument(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {}

} // namespace

void OCore::BeginProgram() {
    // An exception that nobody catches, on any thread, comes to abort in the end, which asks this handler
    // first. A broken stack ends the process without asking anybody, with STATUS_STACK_BUFFER_OVERRUN.
    _set_abort_behavior(0, _WRITE_ABORT_MSG | _CALL_REPORTFAULT);
    static_cast<void>(std::signal(SIGABRT, OnAbort));
    _set_purecall_handler(EndProgram);
    _set_invalid_parameter_handler(OnInvalidArgument);
}
