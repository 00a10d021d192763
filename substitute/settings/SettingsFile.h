// Settings files on disk.
#pragma once

#include <string>

#include "substitute/settings/Settings.h"

namespace kemba::substitute {

/// Bytes of a file. Throws Failure with the system's status; ERROR_FILE_TOO_LARGE, before anything is read,
/// when there are more than `limit`.
Bytes ReadSettingsFile(const std::wstring& path, std::size_t limit);

/// Makes or replaces a file: the bytes are written beside it and take its name when all of them are on the
/// disk. Throws Failure with the system's status; the former file is whole then, and nothing is left beside
/// it.
void WriteSettingsFile(const std::wstring& path, const Bytes& bytes);

} // namespace kemba::substitute
