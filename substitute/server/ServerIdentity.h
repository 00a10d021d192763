// The server's identity as an application of COM.
#pragma once

#include <guiddef.h>

namespace kemba::substitute {

/// The AppID under which the server's classes are registered.
inline constexpr GUID kApplication = {
    0x2A67A06D, 0xD94F, 0x42C1, {0x90, 0x74, 0x33, 0xF0, 0x56, 0x30, 0xEF, 0x24}};

} // namespace kemba::substitute
