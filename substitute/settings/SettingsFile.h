// Settings files on disk.
#pragma once

#include <cstddef>
#include <string>

#include "substitute/base/Bytes.h"

namespace kemba::substitute {

/// Bytes of a file. Throws Failure with the system's status; ERROR_FILE_TOO_LARGE, before anything is read,
/// when there are more than `limit`, ERROR_BAD_FILE_TYPE for a device.
Bytes ReadSettingsFile(const std::wstring& path, std::size_t limit);

/// The system's call that gives a file the name of another one together with that one's access list,
/// attributes and time of creation.
using ReplaceCall = decltype(&ReplaceFileW);

/// Makes or replaces a file: the bytes are written beside it and take its name when all of them are on the
/// disk. Devices and streams of files are refused. Throws Failure with the system's status; the former file
/// is whole then, and nothing is left beside it. Should the system have taken the former file's name and not
/// give it back, the reason tells its other name. `replace` is the system's but for tests.
void WriteSettingsFile(const std::wstring& path, const Bytes& bytes, ReplaceCall replace = &ReplaceFileW);

} // namespace kemba::substitute
