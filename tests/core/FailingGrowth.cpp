// The linker puts this in the place of realloc (--wrap).
#include "tests/core/FailingGrowth.h"

#include <cstddef>

namespace kit {
namespace {

int remaining = 0; // 0: nothing is to fail

} // namespace

extern "C" {

void* __real_realloc(void* memory, std::size_t size);

void* __wrap_realloc(void* memory, std::size_t size) {
    return remaining > 0 && --remaining == 0 ? nullptr : __real_realloc(memory, size);
}

} // extern "C"

FailingGrowth::FailingGrowth(int which) {
    remaining = which;
}

FailingGrowth::~FailingGrowth() {
    remaining = 0;
}

bool FailingGrowth::HasFailed() const {
    return remaining == 0;
}

} // namespace kit
