// What the outcomes of a run mean.
#include "tests/acceptance/Checks.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace acceptance {
namespace {

const std::string kNoQueue = "the spooler has no queue commands";
const std::string kNoScript32 = "there is no 32-bit cscript.exe";
const std::string kNoPowerShell = "powershell.exe runs no script";
const std::string kNoPowerShell32 = "there is no 32-bit powershell.exe";

const WineGap kGaps[] = {
    {"PrinterQueue.HoldsJobsWhilePausedAndLetsThemGoWhenResumed", kNoQueue},
    {"PrinterQueue.PurgeDeletesTheJobsOfAPausedQueue", kNoQueue},
    {"Script.ThePowerShellOfThePageDoesWhatItSays", kNoPowerShell},
    {"Scripts/ScriptHost.IsToldTheVersion/VBScript32", kNoScript32},
    {"Scripts/ScriptHost.IsToldTheVersion/PowerShell64", kNoPowerShell},
    {"Scripts/ScriptHost.IsToldTheVersion/PowerShell32", kNoPowerShell32},
    {"Scripts/ScriptHost.ReadsAndChangesAPrinter/VBScript32", kNoScript32},
    {"Scripts/ScriptHost.ReadsAndChangesAPrinter/PowerShell64", kNoPowerShell},
    {"Scripts/ScriptHost.ReadsAndChangesAPrinter/PowerShell32", kNoPowerShell32},
};

} // namespace

std::span<const WineGap> WineGaps() {
    return kGaps;
}

Check HoldToGaps(Check check, std::span<const WineGap> gaps) {
    const auto gap = std::ranges::find(gaps, check.name, &WineGap::name);
    if (check.outcome == Outcome::NotOffered && (gap == gaps.end() || gap->reason != check.detail)) {
        check.outcome = Outcome::Failed;
        check.detail =
            "not offered here (" + check.detail + "), which the list of what Wine lacks does not say";
    } else if (check.outcome == Outcome::Passed && gap != gaps.end()) {
        check.outcome = Outcome::Failed;
        check.detail = "offered here, while the list of what Wine lacks says: " + gap->reason;
    }
    return check;
}

std::vector<Check> UntriedGaps(std::span<const Check> checks, std::span<const WineGap> gaps) {
    std::vector<Check> untried;
    for (const WineGap& gap : gaps) {
        if (std::ranges::find(checks, gap.name, &Check::name) == checks.end()) {
            untried.push_back(
                {gap.name, Outcome::Failed, "not tried, while the list of what Wine lacks has it"});
        }
    }
    return untried;
}

std::string ReportOf(const Check& check) {
    if (check.outcome == Outcome::Passed) {
        return "passed            " + check.name;
    }
    if (check.outcome == Outcome::NotOffered) {
        return "not offered here  " + check.name + ": " + check.detail;
    }
    std::string lines = "FAILED            " + check.name + (check.detail.empty() ? "" : "\n    ");
    for (const char character : check.detail) {
        lines += character;
        lines += character == '\n' ? "    " : "";
    }
    return lines;
}

Verdict Judge(std::span<const Check> checks) {
    const auto count = [checks](Outcome outcome) {
        return std::ranges::count(checks, outcome, &Check::outcome);
    };
    const auto failed = count(Outcome::Failed);
    const auto passed = count(Outcome::Passed);
    const std::string counts = std::to_string(passed) + " passed, " + std::to_string(failed) + " failed, " +
                               std::to_string(count(Outcome::NotOffered)) + " not offered here";
    if (failed == 0 && passed > 0) {
        return {0, "PASSED: " + counts};
    }
    return {1, (failed > 0 ? "FAILED: " : "FAILED, for nothing was checked: ") + counts};
}

} // namespace acceptance
