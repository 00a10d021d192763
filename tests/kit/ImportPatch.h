// Imports of a module that lead elsewhere.
#pragma once

#include <windows.h>

#include <string_view>

namespace kit {

/// Puts `replacement` in the place of the call `name` (zero-terminated) in the module's import tables,
/// whatever library it comes from. Gives the address that stood there, or null, with nothing changed, when
/// the module does not import such a call. Allocates nothing, but loads a library that the first call to it
/// would load.
void* PatchImport(HMODULE module, std::string_view name, void* replacement);

} // namespace kit
