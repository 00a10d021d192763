// What the standard library's own code throws, replaced: its classes for that carry copies of texts, which
// nobody reads, and with the copies come two string types as a whole, a random generator and the system's
// words for errors. The calls are put in the place of the library's own by the linker (--wrap), as
// core/CMakeLists.txt asks it to. MSVC's library throws its own.
#include "core/LibraryErrors.h"

#include <exception>
#include <new>

// The linker makes these names; they are not ours to choose. NOLINTBEGIN(bugprone-reserved-identifier,cert-*)
extern "C" {

[[noreturn]] void __wrap__ZSt17__throw_bad_allocv() {
    throw std::bad_alloc();
}

[[noreturn]] void __wrap__ZSt28__throw_bad_array_new_lengthv() {
    throw std::bad_array_new_length();
}

[[noreturn]] void __wrap__ZSt20__throw_length_errorPKc(const char* what) {
    throw OCore::LengthError(what);
}

[[noreturn]] void __wrap__ZSt19__throw_logic_errorPKc(const char* /*what*/) {
    throw std::exception();
}

[[noreturn]] void __wrap__ZSt24__throw_out_of_range_fmtPKcz(const char* /*format*/, ...) {
    throw std::exception();
}

[[noreturn]] void __wrap__ZSt20__throw_system_errori(int /*code*/) {
    throw std::exception();
}

[[noreturn]] void __wrap__ZSt25__throw_bad_function_callv() {
    throw std::exception();
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-*)
