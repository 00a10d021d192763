// kemba.exe as the tests of the programs start it.
#pragma once

#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"

namespace kit {

inline ProcessResult Kemba(const Words& words, const ProcessOptions& options = {}) {
    return RunProgram(L"kemba.exe", words, options);
}

} // namespace kit
