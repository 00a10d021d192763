// What get, set and queue share: looking a word up, rejecting it, and the handling of failures.
#pragma once

#include <algorithm>
#include <iterator>

#include "automation/ComError.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// The first row whose `word` equals `word`, ignoring the case of a to z. Without one, stores the word as
/// typed in `rejected` and throws the message key "error:InvalidArgument".
template<class Row, std::size_t Rows>
const Row& FindRow(const Row (&table)[Rows], const wchar_t* word, OString& rejected) {
    const auto row = std::find_if(std::begin(table), std::end(table), [word](const Row& candidate) {
        return OCore::EqualsIgnoreCase(word, candidate.word);
    });
    if (row == std::end(table)) {
        rejected = word;
        throw L"error:InvalidArgument";
    }
    return *row;
}

/// Does one printer's work. Automation failures and rejected words are reported and count as done; anything
/// else is reported and stops the run (false).
template<class Work>
bool ExecuteReporting(ConsoleOutput& console, const OString& rejected, Work&& work) {
    try {
        work();
        return true;
    } catch (const ComError&) {
        console.PrintMessage("error:CommandNotSupported");
        return true;
    } catch (const wchar_t* key) {
        console.PrintMessage(key, rejected);
        return true;
    } catch (...) {
        console.PrintMessage("error:Unspecified");
        return false;
    }
}

} // namespace kemba
