// Runs of the program's entry point inside the test process.
#include "tests/kit/WholeRun.h"

#include <string>
#include <vector>

#include "tests/kit/StdoutCapture.h"

namespace kit {

RunResult RunWords(const EntryPoint& entryPoint, const std::vector<std::wstring>& words) {
    std::vector<std::wstring> texts{L"kemba"};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<wchar_t*> arguments;
    for (std::wstring& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr); // the C runtime ends the array so

    StdoutCapture capture;
    RunResult result;
    result.status = entryPoint(static_cast<int>(texts.size()), arguments.data());
    result.output = capture.Finish();
    return result;
}

} // namespace kit
