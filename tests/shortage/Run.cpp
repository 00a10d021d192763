// Starting the program and reading its record.
#include "tests/shortage/Run.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/shortage/Record.h"

namespace kit {
namespace {

constexpr wchar_t kProgram[] = L"kemba-short.exe";

std::wstring Widened(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

/// Shared memory with a board, under a name of its own.
class SharedBoard {
  public:
    SharedBoard() {
        static int made = 0;
        m_name = "kemba-shortage-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++made);
        m_memory = UniqueHandle(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                   sizeof(Board), m_name.c_str()));
        m_view =
            m_memory.get() ? MapViewOfFile(m_memory.get(), FILE_MAP_WRITE, 0, 0, sizeof(Board)) : nullptr;
        if (!m_view) {
            throw std::runtime_error("memory cannot be shared");
        }
    }
    SharedBoard(const SharedBoard&) = delete;
    SharedBoard& operator=(const SharedBoard&) = delete;
    ~SharedBoard() { UnmapViewOfFile(m_view); }

    const std::string& Name() const { return m_name; }
    Board& Get() const { return *static_cast<Board*>(m_view); }

  private:
    std::string m_name;
    UniqueHandle m_memory;
    void* m_view = nullptr;
};

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

Outcome Read(const Record& record) {
    Outcome run;
    run.calls = LinesOf({record.journal, static_cast<std::size_t>(record.journalBytes)});
    run.allocations = record.allocations;
    run.allocationsAtStart = record.allocationsAtStart;
    run.allocationsAtReturn = record.allocationsAtReturn;
    run.refusedCall = record.refusedCall;
    run.isComplete = record.isComplete != 0;
    run.heapBlocks = record.heapBlocks;
    run.handles = record.handles;
    run.faults = LinesOf(record.faults);
    return run;
}

ProcessResult Start(const Words& words, const SharedBoard& board, const Point& point,
                    const std::string& failing, bool outputToFile) {
    ProcessOptions options;
    options.environment = {{Widened(kPointVariable), Widened(point.Text())},
                           {Widened(kServerVariable), Widened(failing)},
                           {Widened(kBoardVariable), Widened(board.Name())}};
    options.outputToFile = outputToFile;
    if (board.Get().runs > 0) {
        options.timeout = std::chrono::minutes(2);
    }
    return RunProgram(kProgram, words, options);
}

} // namespace

std::string Point::Text() const {
    return first == 0 ? "" : (lasts ? "lasting:" : "once:") + std::to_string(first);
}

Outcome RunShort(const Words& words, const Point& point, const std::string& failing) {
    const SharedBoard board;
    const ProcessResult ended = Start(words, board, point, failing, false);
    Outcome run = Read(board.Get().single);
    run.status = ended.status;
    run.timedOut = ended.timedOut;
    run.output = ended.output;
    run.errors = ended.errors;
    return run;
}

std::vector<Outcome> RunAllShort(const Words& words, const std::vector<Point>& points,
                                 const std::string& failing) {
    std::vector<Outcome> runs;
    while (runs.size() < points.size()) {
        const SharedBoard board;
        Board& shared = board.Get();
        shared.runs = static_cast<LONG>(std::min<std::size_t>(Board::kMostRuns, points.size() - runs.size()));
        const std::size_t begin = runs.size();
        for (LONG index = 0; index < shared.runs; ++index) {
            const Point& point = points[begin + static_cast<std::size_t>(index)];
            shared.repeated[index].record.firstRefused = point.first;
            shared.repeated[index].record.isLasting = point.lasts;
        }
        const ProcessResult ended = Start(words, board, {}, failing, true);
        for (LONG index = 0; index < shared.runs; ++index) {
            const RepeatedRun& repeated = shared.repeated[index];
            // Whoever brought the process down, or wrote where nobody may write, shows when each runs alone.
            if (repeated.isEnded == 0 || !ended.errors.empty()) {
                runs.push_back(RunShort(words, points[runs.size()], failing));
                continue;
            }
            runs.push_back(Read(repeated.record));
            runs.back().status = static_cast<DWORD>(repeated.status);
            runs.back().output =
                ended.output.substr(static_cast<std::size_t>(repeated.outputBegin),
                                    static_cast<std::size_t>(repeated.outputEnd - repeated.outputBegin));
        }
    }
    return runs;
}

std::string Repetition(const Words& words, const Point& point, const std::string& failing) {
    std::string line = std::string(kPointVariable) + "=" + point.Text();
    if (!failing.empty()) {
        line += " " + std::string(kServerVariable) + "='" + failing + "'";
    }
    line += " cmake/start-wine build/mingw-release/bin/kemba-short.exe";
    for (const std::wstring& word : words) {
        line += " '" + std::string(word.begin(), word.end()) + "'";
    }
    return line;
}

} // namespace kit
