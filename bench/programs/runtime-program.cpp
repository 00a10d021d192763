// What a program costs that does nothing but what each of kemba's commands is bound to do around its work.
#include "bench/programs/RuntimeStart.h"

int main() {
    const bench::RuntimeStart runtime;
    return runtime.Succeeded() ? 0 : 1;
}
