// Reading the lines of GoogleTest programs.
#include "tests/acceptance/TestOutput.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/acceptance/Checks.h"

namespace acceptance {
namespace {

constexpr std::string_view kBegun = "[ RUN      ] ";
constexpr std::string_view kSkipMark = ": Skipped";

/// The marks of a test's end, each followed by its name.
constexpr struct {
    std::string_view mark;
    Outcome outcome;
} kEnds[] = {
    {"[       OK ] ", Outcome::Passed},
    {"[  FAILED  ] ", Outcome::Failed},
    {"[  SKIPPED ] ", Outcome::NotOffered},
};

/// The lines without their ends.
std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.push_back(line);
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return lines;
}

/// The reason follows the line that says where a test was skipped, and may have an empty line behind it.
std::string ReasonIn(std::string said) {
    while (said.ends_with('\n')) {
        said.pop_back();
    }
    const std::size_t mark = said.rfind(kSkipMark);
    const std::size_t reason =
        mark == said.npos ? mark : said.find_first_not_of('\n', mark + kSkipMark.size());
    return reason == said.npos ? "" : said.substr(reason);
}

} // namespace

std::vector<std::string> ReadTestList(std::string_view output) {
    std::vector<std::string> names;
    std::string suite;
    for (std::string_view line : LinesOf(output)) {
        line = line.substr(0, line.find("  #"));
        if (line.starts_with("  ")) {
            names.push_back(suite + std::string(line.substr(2)));
        } else if (line.ends_with('.')) {
            suite = line;
        }
    }
    return names;
}

std::vector<Check> ReadTestOutput(std::string_view output, const std::string& howItEnded) {
    std::vector<Check> checks;
    bool isOpen = false;
    std::string said;
    for (const std::string_view line : LinesOf(output)) {
        if (line.starts_with(kBegun)) {
            checks.push_back({std::string(line.substr(kBegun.size())), Outcome::Failed, ""});
            isOpen = true;
            said.clear();
            continue;
        }
        bool isEnd = false;
        for (const auto& end : kEnds) {
            if (isOpen && line.starts_with(std::string(end.mark) + checks.back().name)) {
                checks.back().outcome = end.outcome;
                checks.back().detail = end.outcome == Outcome::NotOffered ? ReasonIn(said) : said;
                isEnd = true;
            }
        }
        isOpen = isOpen && !isEnd;
        if (isOpen) {
            said += (said.empty() ? "" : "\n") + std::string(line);
        }
    }
    if (isOpen) {
        checks.back().detail = said + (said.empty() ? "" : "\n") + howItEnded;
    }
    return checks;
}

} // namespace acceptance
