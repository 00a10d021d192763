// Registration of the contract's type library, and with it of the marshalling of its interfaces.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>

#include "substitute/server/CommandLine.h"

namespace kemba::substitute {

/// Registers the library that the program at `path` carries; the interfaces are then marshalled between
/// processes by the system's own marshaller. Throws Failure.
void RegisterTypeLibrary(Scope scope, ITypeLib& library, const std::wstring& path);

/// Removes what the above wrote as far as the system removes it; a library that is not registered is no
/// failure.
void UnregisterTypeLibrary(Scope scope, ITypeLib& library);

} // namespace kemba::substitute
