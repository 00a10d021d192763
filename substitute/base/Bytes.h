// Bytes without a meaning of their own.
#pragma once

#include <windows.h>

#include <vector>

namespace kemba::substitute {

using Bytes = std::vector<BYTE>;

} // namespace kemba::substitute
