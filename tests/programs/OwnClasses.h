// Copies of the built programs that know the server under classes of their own.
#pragma once

#include <windows.h>

#include <string>

namespace kit {

/// Fresh classes in the place of the contract's. A server under them has no other clients and may simply be
/// ended: Wine never forgets the classes of a server that was.
struct OwnClasses {
    /// Makes three new classes.
    OwnClasses();
    /// Those of which the first is that of the main object: they differ in their first number alone.
    explicit OwnClasses(const CLSID& first);

    /// Puts them in the place of the contract's, wherever those stand in the program's file. Throws
    /// std::runtime_error when the file has none of one of them.
    void PutInto(const std::wstring& program) const;

    CLSID automation{};
    CLSID actions{};
    CLSID version{};
};

/// As the registry and command lines write it, braces included.
std::wstring TextOf(const CLSID& id);

} // namespace kit
