// Prints what "kemba help" prints, and does besides what each of kemba's commands is bound to do around its
// work.
#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "HelpText.h"
#include "bench/programs/RuntimeStart.h"

int main() {
    const bench::RuntimeStart runtime;
    _setmode(_fileno(stdout), _O_BINARY);
    return runtime.Succeeded() && std::fputs(kHelpText, stdout) >= 0 ? 0 : 1;
}
