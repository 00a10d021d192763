// Prints what "kemba help" prints, between start and end of the component runtime, which every command needs.
#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <objbase.h>

#include <cstdio>

#include "HelpText.h"

int main() {
    const bool started = SUCCEEDED(CoInitialize(nullptr));
    _setmode(_fileno(stdout), _O_BINARY);
    const bool printed = std::fputs(kHelpText, stdout) >= 0;
    CoUninitialize();
    return started && printed ? 0 : 1;
}
