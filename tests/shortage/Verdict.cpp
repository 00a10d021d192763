// What may happen and what may not.
#include "tests/shortage/Verdict.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/shortage/CommandLines.h"
#include "tests/shortage/Run.h"

namespace kit {
namespace {

constexpr std::string_view kUnspecified = "Unspecified error.\r\n";
constexpr std::string_view kFinished = "Finished processing command.\r\n";
constexpr DWORD kFailed = 2;
/// Statuses from here on are those of exceptions of the system: access violation, stack overflow and the
/// like.
constexpr DWORD kFirstException = 0xC0000000;

/// Whether the call makes a BSTR, whose failure counts as a failure of the call of the server that it is for.
bool IsText(std::string_view refusedCall) {
    return refusedCall.starts_with("SysAllocString");
}

bool IsSame(const Outcome& run, const Outcome& other) {
    return run.status == other.status && run.output == other.output && run.calls == other.calls;
}

bool Begins(const std::vector<std::string>& calls, const std::vector<std::string>& whole) {
    return calls.size() <= whole.size() && std::equal(calls.begin(), calls.end(), whole.begin());
}

bool BeginsAnyOutput(std::string_view output, const std::vector<Outcome>& specified) {
    return std::ranges::any_of(specified, [&](const Outcome& run) { return run.output.starts_with(output); });
}

/// What may follow on the output up to where a handled shortage struck.
std::vector<std::string> Endings(Handling handling) {
    const std::string finished(kFinished);
    const std::string unspecified = std::string(kUnspecified) + finished;
    switch (handling) {
    case Handling::None: break;
    case Handling::Silent: return {""};
    case Handling::Finished: return {finished};
    case Handling::Unspecified: return {unspecified};
    case Handling::Either: return {unspecified, finished};
    }
    return {};
}

bool IsHandled(const Outcome& run, const std::vector<Outcome>& specified, Handling handling) {
    return run.status == kFailed && std::ranges::any_of(Endings(handling), [&](const std::string& ending) {
               return run.output.ends_with(ending) &&
                      BeginsAnyOutput(
                          std::string_view(run.output).substr(0, run.output.size() - ending.size()),
                          specified);
           });
}

/// The error's line with another text, as it comes out when the system's text for a status cannot be made.
std::string WithErrorText(const std::string& output, std::string_view text) {
    constexpr std::string_view kStart = "Error: ";
    const std::size_t start = output.find(kStart);
    if (start == std::string::npos) {
        return output;
    }
    const std::size_t end = output.find("\r\n", start);
    return output.substr(0, start + kStart.size()) + std::string(text) + output.substr(end);
}

/// A status's text is made by the system; without memory for that it is the status's number, and without
/// memory for that none.
bool IsOutputOf(const Outcome& run, const Outcome& specified) {
    if (run.output == specified.output) {
        return true;
    }
    return (run.refusedCall == "FormatMessageW" || run.refusedCall == "LocalAlloc") &&
           (run.output == WithErrorText(specified.output, "") ||
            run.output == WithErrorText(specified.output, "Unknown error 0x80070005"));
}

/// What process-wide objects hold depends on how far the run came: it may not end with more than all of the
/// ways.
std::vector<std::string> NotGivenBack(const Outcome& run, const std::vector<Outcome>& specified) {
    // What the runtime library makes for the first exception that is thrown, and keeps.
    constexpr long kBlocksOfExceptions = 10;
    constexpr long kHandlesOfExceptions = 2;
    const auto most = [&](long Outcome::* held) {
        return (*std::ranges::max_element(specified, {}, held)).*held;
    };
    long blocks = run.heapBlocks - most(&Outcome::heapBlocks);
    long handles = run.handles - most(&Outcome::handles);
    if (handles == kHandlesOfExceptions) {
        handles = 0;
        blocks -= kBlocksOfExceptions;
    }
    // Where the first exception is thrown, the thread library loses what it cannot enter in a list of its
    // own: the one case in which a run goes on as if it had got the memory.
    constexpr long kLostByThreadLibrary = 3;
    if (!IsText(run.refusedCall) && IsSame(run, specified.front())) {
        blocks -= kLostByThreadLibrary;
    }
    std::vector<std::string> faults = run.faults;
    if (blocks > 0) {
        faults.push_back("not given back: " + std::to_string(blocks) + " heap blocks");
    }
    if (handles > 0) {
        faults.push_back("not given back: " + std::to_string(handles) + " handles");
    }
    return faults;
}

Verdict JudgeEnd(const Outcome& run, const std::vector<Outcome>& specified, Handling handling) {
    const bool isAsSpecified = std::ranges::any_of(specified, [&](const Outcome& way) {
        return run.status == way.status && run.calls == way.calls && IsOutputOf(run, way);
    });
    if (isAsSpecified) {
        return {};
    }
    const bool callsAreRight =
        std::ranges::any_of(specified, [&](const Outcome& way) { return Begins(run.calls, way.calls); });
    if (!callsAreRight) {
        return {Wrong::WrongWork, "the server was asked for something else"};
    }
    if (run.status == specified.front().status && run.status == 0) {
        return {Wrong::WrongWork, "status 0, but not all was done and said"};
    }
    if (run.status == kAbnormalEnd) {
        return BeginsAnyOutput(run.output, specified)
                   ? Verdict{}
                   : Verdict{Wrong::WrongOutput, "output that no ordinary run begins with"};
    }
    if (IsHandled(run, specified, handling)) {
        return {};
    }
    if (run.status == kFailed) {
        return {Wrong::WrongOutput, "status 2 with the wrong words"};
    }
    return {Wrong::WrongStatus, "neither the ordinary status nor that of an abnormal end"};
}

} // namespace

std::vector<RefusedArgument> ArgumentsOf(const Outcome& undisturbed) {
    std::vector<RefusedArgument> arguments;
    for (const std::string& call : undisturbed.calls) {
        // "DriverAutomation#1.PutPrinterName("Dock 1")"
        const std::size_t number = call.find('#');
        const std::size_t operation = call.find('.', number);
        const std::size_t argument = call.find('(', operation);
        if (call[argument + 1] != '"') {
            continue;
        }
        const std::string name = "I" + call.substr(0, number) + call.substr(operation, argument - operation);
        arguments.push_back({call, name + call.substr(number, operation - number) + "=8007000E"});
    }
    return arguments;
}

Outcome WithoutCall(Outcome refused, const std::string& call) {
    const auto made = std::ranges::find(refused.calls, call);
    if (made != refused.calls.end()) {
        refused.calls.erase(made);
    }
    return refused;
}

Verdict Judge(const Outcome& run, const std::vector<Outcome>& ways, Handling handling) {
    if (run.timedOut) {
        return {Wrong::Hang, "did not end"};
    }
    if (run.status >= kFirstException) {
        return {Wrong::Crash, "crashed"};
    }
    if (!run.errors.empty()) {
        return {Wrong::Word, "words on standard error: " + run.errors};
    }
    const std::vector<Outcome> specified(ways.begin(),
                                         IsText(run.refusedCall) ? ways.end() : ways.begin() + 1);
    const Verdict verdict = JudgeEnd(run, specified, handling);
    if (verdict.wrong != Wrong::Nothing || !run.isComplete) {
        return verdict;
    }
    const std::vector<std::string> faults = NotGivenBack(run, specified);
    return faults.empty() ? Verdict{} : Verdict{Wrong::NotGivenBack, faults.front()};
}

} // namespace kit
