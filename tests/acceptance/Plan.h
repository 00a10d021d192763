// Which test programs are run where.
#pragma once

#include <span>
#include <string>

namespace acceptance {

/// What decides.
struct Machine {
    bool isWine = false;
    bool isAdministrator = false;
    unsigned codePage = 0; ///< the system's ANSI code page
};

/// Tests of a program; the filters are those of GoogleTest, and an empty one is none.
struct Part {
    const wchar_t* program;
    const char* tests;
    const char*
        withoutAdministrator; ///< those of them that make no printers and write nothing for the machine
    const char* onWine;    ///< those that are run on Wine, where there is little time and others run them all
    unsigned codePage = 0; ///< the one that they are about
    bool isUnregistered = false; ///< before the server is registered
};

/// All parts in the order in which they are run.
std::span<const Part> Parts();

/// The tests to run, and why all others of the part are not offered; these are passed over without a word if
/// there is no reason.
struct Selection {
    std::string run;
    std::string reason;
};
Selection SelectTests(const Part& part, const Machine& machine);

} // namespace acceptance
