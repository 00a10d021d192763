// What a piece of work fails with.
#pragma once

#include <windows.h>

#include <utility>

#include "substitute/base/Failure.h"

namespace kit {

/// Does the work; its failure, or S_OK without a reason when it has none.
template<class Work>
kemba::substitute::Failure FailureOf(Work&& work) {
    try {
        std::forward<Work>(work)();
    } catch (const kemba::substitute::Failure& failure) {
        return failure;
    }
    return {S_OK, {}};
}

} // namespace kit
