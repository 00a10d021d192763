// Asking for Wine's version, a function that only Wine has.
#include "demo/Wine.h"

#include <windows.h>

#include <string>

namespace demo {

std::string WineVersion() {
    using GetVersion = const char*(CDECL*)();
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    return address ? reinterpret_cast<GetVersion>(reinterpret_cast<void*>(address))() : "";
}

bool IsWine() {
    static const bool isWine = !WineVersion().empty();
    return isWine;
}

} // namespace demo
