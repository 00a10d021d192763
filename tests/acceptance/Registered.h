// Whether the machine has a server of the contract already.
#pragma once

#include <string>
#include <vector>

namespace acceptance {

/// Each key of the contract's classes, type library and interfaces that is there, for all users or for this
/// one, with the program that it names.
std::vector<std::string> RegisteredServers();

} // namespace acceptance
