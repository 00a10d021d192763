// Prints what "kemba help" prints, and knows it by heart.
#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "HelpText.h"

int main() {
    _setmode(_fileno(stdout), _O_BINARY);
    return std::fputs(kHelpText, stdout) < 0;
}
