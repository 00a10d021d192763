// kemba-dal: an automation server for machines without the printer driver.
#include <windows.h>

#include <string_view>
#include <vector>

#include "core/ProgramEnd.h"
#include "core/SystemLibraries.h"
#include "substitute/base/Failure.h"
#include "substitute/server/CommandLine.h"
#include "substitute/server/Program.h"

int wmain(int count, wchar_t** words) {
    using namespace kemba::substitute;
    OCore::BeginProgram();
    OCore::TakeLibrariesFromTheSystemOnly();
    try {
        const std::vector<std::wstring_view> given(words + (count > 0 ? 1 : 0), words + count);
        return RunProgram(ParseCommandLine(given));
    } catch (...) {
        return ReportFailure(CurrentFailure());
    }
}
