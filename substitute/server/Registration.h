// The server's entries in the registry.
#pragma once

#include <string>

#include "substitute/objects/ContractTypes.h"
#include "substitute/server/CommandLine.h"

namespace kemba::substitute {

/// Writes all entries for the program at `path`: classes, application, type library and interfaces, below
/// "Software\Classes" of the machine (needs its administrator) or of the current user. What is there is
/// replaced. Throws Failure.
void RegisterServer(Scope scope, const ContractTypes& types, const std::wstring& path);

/// Removes all that the above wrote; entries that are not there are no failure. Throws Failure.
void UnregisterServer(Scope scope, const ContractTypes& types);

} // namespace kemba::substitute
