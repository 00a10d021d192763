// Checks, what became of them, and what that means for the whole run.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace acceptance {

enum class Outcome { Passed, Failed, NotOffered };

struct Check {
    std::string name;
    Outcome outcome = Outcome::Failed;
    std::string detail{}; ///< lines about a failure; the reason of what is not offered

    bool operator==(const Check&) const = default;
};

/// What Wine lacks: the check that cannot be made there, and the reason that the check itself finds out by
/// trying.
struct WineGap {
    std::string name;
    std::string reason;
};

/// The fixed list of it.
std::span<const WineGap> WineGaps();

/// A check of a run on Wine, failed if it is not as the list has it: not offered, and not in the list or
/// there for another reason; in the list, and offered.
Check HoldToGaps(Check check, std::span<const WineGap> gaps);

/// A failure for each in the list that was not tried at all.
std::vector<Check> UntriedGaps(std::span<const Check> checks, std::span<const WineGap> gaps);

/// The check's lines in the report, without the last one's end.
std::string ReportOf(const Check& check);

struct Verdict {
    int status; ///< of the program: 0 only when something was checked and nothing failed
    std::string line;
};
Verdict Judge(std::span<const Check> checks);

} // namespace acceptance
