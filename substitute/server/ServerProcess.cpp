// Deciding when the process ends.
#include "substitute/server/ServerProcess.h"

#include <chrono>
#include <optional>

#include "substitute/base/Failure.h"
#include "substitute/objects/UseCount.h"

namespace kemba::substitute {
namespace {

/// Returns the state in which nothing has used the process for long enough.
UseCount::State WaitUntilUnused(const UseCount& uses, const ServerTimes& times) {
    UseCount::State state = uses.Get();
    for (;;) {
        std::optional<std::chrono::milliseconds> patience;
        if (state.present == 0) {
            patience = state.begun == 0 ? times.start : times.grace;
        }
        const UseCount::State next = uses.WaitForChange(state, patience);
        if (next == state) {
            return state;
        }
        state = next;
    }
}

} // namespace

void ServeUntilUnused(UseCount& uses, ClassOffer& classes, const ServerTimes& times) {
    classes.Show();
    for (;;) {
        const UseCount::State unused = WaitUntilUnused(uses, times);
        // Hidden first, so that nobody finds them; then clients that found them just before are awaited.
        classes.Hide();
        if (uses.WaitForChange(unused, times.settle) == unused && uses.TryEnd(unused)) {
            return;
        }
        try {
            classes.Show();
        } catch (const Failure&) { // NOLINT(bugprone-empty-catch)
            // Whoever is here is served to the end all the same; new clients start another process.
        }
    }
}

} // namespace kemba::substitute
