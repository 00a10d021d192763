// kemba.exe.
#include "cli/main/EntryPoint.h"
#include "core/ProgramEnd.h"
#include "core/SystemLibraries.h"

extern "C" {
int _dowildcard = 0; // words with "?" and "*" are handed on as typed
}

int wmain(int argumentCount, wchar_t* arguments[]) {
    OCore::BeginProgram();
    OCore::TakeLibrariesFromTheSystemOnly();
    return kemba::RunKemba(argumentCount, arguments);
}
