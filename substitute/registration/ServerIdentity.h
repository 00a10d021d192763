// What the server is called towards the system.
#pragma once

#include <windows.h>

namespace kemba::substitute {

/// The server's application (AppID): COM and the system's administration know the process by it.
inline constexpr GUID kApplication = {
    0x2A67A06D, 0xD94F, 0x42C1, {0x90, 0x74, 0x33, 0xF0, 0x56, 0x30, 0xEF, 0x24}};
/// The application's name in words, as administrators see it.
inline constexpr wchar_t kApplicationName[] = L"KEMBA substitute driver automation";
/// The name of the program's file, wherever it lies.
inline constexpr wchar_t kProgramFile[] = L"kemba-dal.exe";

} // namespace kemba::substitute
