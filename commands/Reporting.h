// What get, set and queue share: rejecting a word, and what is said of failures.
#pragma once

#include <cstddef>

#include "automation/ComError.h"
#include "core/OString.h"
#include "core/WordTable.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// The row of `word`. Without one, stores the word as typed in `rejected` and throws the message key
/// "error:InvalidArgument".
template<class Row, std::size_t Rows>
const Row& RequireRow(const Row (&table)[Rows], const wchar_t* word, OString& rejected) {
    const Row* const row = OCore::FindRow(table, word);
    if (!row) {
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
