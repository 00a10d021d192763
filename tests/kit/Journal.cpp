// Selection of journal lines.
#include "tests/kit/Journal.h"

#include <string>
#include <vector>

namespace kit {

std::vector<std::string> Journal::Select(bool callsOnly) const {
    std::vector<std::string> lines;
    for (const auto& [isCall, line] : m_entries) {
        if (isCall || !callsOnly) {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace kit
