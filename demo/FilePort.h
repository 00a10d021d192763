// Printer ports on Windows that are a file.
#pragma once

#include <string>

namespace demo {

/// Whether a port of that name is a file: its name is the file's path.
bool IsFilePort(const std::wstring& port);

/// Makes a local port whose other end is the file of that path; does nothing when there is one, or on Wine,
/// where any name will do. Each job takes the place of the one before it in the file. Throws SpoolerError; it
/// takes an administrator.
void MakeFilePort(const std::wstring& file);

/// Removes the port; the file stays. False while a printer has it, or the spooler still holds on to it.
bool RemoveFilePort(const std::wstring& file);

} // namespace demo
