// kemba.exe.
#include "cli/main/EntryPoint.h"

extern "C" {
int _dowildcard = 0; // words with "?" and "*" are handed on as typed
}

int wmain(int argumentCount, wchar_t* arguments[]) {
    return kemba::RunKemba(argumentCount, arguments);
}
