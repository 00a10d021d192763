// What the runtime libraries do when they cannot go on, replaced: each way leads to EndProgram. The calls are
// put in the place of the libraries' own by the linker (--wrap), as core/CMakeLists.txt asks it to.
#include "core/ProgramEnd.h"

#include <pthread.h>

#include <cerrno>
#include <cstddef>
#include <exception>

namespace {

bool begun = false;

} // namespace

// The linker makes these names; they are not ours to choose. NOLINTBEGIN(bugprone-reserved-identifier,cert-*)

// What std::terminate calls. The library's own, which this keeps out of the program, writes the exception's
// demangled type to standard error, and needs 70 KB for that.
void __gnu_cxx::__verbose_terminate_handler() {
    OCore::EndProgram();
}

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);

void* __wrap_malloc(std::size_t size) {
    void* const memory = __real_malloc(size);
    if (!memory && !begun) {
        OCore::EndProgram();
    }
    return memory;
}

// The runtime alone asks for zeroed memory, for locks that are made when they are first used, and does not
// look at the answer.
void* __wrap_calloc(std::size_t count, std::size_t size) {
    void* const memory = __real_calloc(count, size);
    if (!memory) {
        OCore::EndProgram();
    }
    return memory;
}

// The pool from which exceptions are thrown when memory is short throws when its own lock cannot be made,
// which would be without end.
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    const int status = __real_pthread_mutex_lock(mutex);
    if (status == ENOMEM) {
        OCore::EndProgram();
    }
    return status;
}

[[noreturn]] void __wrap_abort() {
    OCore::EndProgram();
}

} // extern "C"

// NOLINTEND(bugprone-reserved-identifier,cert-*)

void OCore::BeginProgram() {
    // The thread library keeps a record of each thread, made when it is first needed, and for the first
    // thread that is where the first exception is thrown: it does not look whether it got one.
    if (pthread_self() == 0) {
        EndProgram();
    }
    begun = true;
}
