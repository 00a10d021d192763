// Libraries of the system, and of the system alone.
#pragma once

#include <windows.h>

#include <string_view>

namespace OCore {

/// From now on the process finds libraries that are asked for by name alone in the system's folder, not
/// beside the program, in the current folder or along the path; folders that somebody adds on purpose count
/// as well. For the first line of a program. Systems without that call (Windows Vista and 7 without update
/// KB2533623) keep their search; what this program itself imports comes from the system's folder there too.
void TakeLibrariesFromTheSystemOnly();

/// A library of the system by its file name in ASCII, loaded by full path together with what it needs, and
/// never freed; null, with the last error, when there is none. Imports of libraries that Windows would look
/// for beside the program are loaded this way at their first call; without its library such a call ends the
/// process.
HMODULE LoadSystemLibrary(std::string_view name);

} // namespace OCore
