// Versions of program files.
#pragma once

#include <cstdint>
#include <string>

namespace kemba::substitute {

/// The version that a program file's resources state, four parts of 16 bits, the first one highest; 0 when
/// there is no such file, or it states none.
std::uint64_t VersionOfFile(const std::wstring& path);

} // namespace kemba::substitute
