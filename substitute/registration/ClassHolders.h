// Which programs the registry names for the server's classes, library and interfaces.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "substitute/objects/ServerClasses.h"
#include "substitute/registration/RegistrationEntries.h"
#include "substitute/registration/RegistryKeys.h"

namespace kemba::substitute {

/// The program that a command line starts, without quotes and arguments.
std::wstring ProgramOf(std::wstring_view commandLine);

/// Whether the path names a copy of this server, in whatever folder: it has the program's file name.
bool IsServerCopy(std::wstring_view program);

/// Whether both paths lead to one file, however they are written.
bool IsSameFile(const std::wstring& left, const std::wstring& right);

struct Holder {
    std::wstring what;    ///< "DriverAutomation", "the type library", ...
    std::wstring program; ///< its path or, where there is none, what the registry says in its place
};

/// Who answers for a class in one view of a hive.
std::vector<Holder> HoldersOfClass(HKEY root, View view, const ServerClass& served);
/// Who answers for any class, the library or the marshalling of an interface, in either view; nobody twice.
/// Throws Failure.
std::vector<Holder> Holders(HKEY root, const LibraryDescription& library);

/// Those that are no copies of this server.
std::vector<Holder> OtherPrograms(const std::vector<Holder>& holders);
/// `"C:\a.dll" (DriverAutomation), "C:\b.exe" (the type library)`.
std::wstring Listed(const std::vector<Holder>& holders);

} // namespace kemba::substitute
