// Finds BSTRs that nobody freed, or freed twice, by watching the task allocator from which they come.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// The watch over the texts of the present test; one per process.
///
/// The system's cache of freed BSTRs is switched off so that every free reaches the allocator. The watch is
/// set up at its first use and stays until the process ends: allocations made before that are unknown to it.
struct TextWatch {
    /// Sets the watch up and forgets all texts watched so far. Needs an initialised component runtime.
    static void Start();

    /// Forgets all texts watched so far.
    static void Forget();

    /// Makes a BSTR that must be freed by whoever receives it; `label` tells where it came from.
    static BSTR Give(std::wstring_view text, std::string_view label);

    /// How many texts were given so far, or since that was forgotten.
    static long Given();
    static void ForgetGiven();

    /// Watches a BSTR that the client made: it too must be freed. False when it lies in no live allocation,
    /// which means that it is no BSTR at all. A null counts as a BSTR and needs no freeing.
    static bool Receive(BSTR text, std::string_view label);

    /// The labels of the watched texts that are not freed yet, in order of address.
    static std::vector<std::string> Live();

    /// The labels of the watched texts that were freed more than once.
    static std::vector<std::string> FreedTwice();
};

} // namespace kit
