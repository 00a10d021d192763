// Dispatcher.
#include "cli/Dispatcher.h"

#include <algorithm>
#include <iterator>

namespace kemba {

const CommandRow* FindCommand(std::span<const CommandRow> table, const wchar_t* word) {
    const auto row = std::find_if(table.begin(), table.end(), [word](const CommandRow& candidate) {
        return OCore::EqualsIgnoreCase(word, candidate.word);
    });
    return row == table.end() ? nullptr : &*row;
}

bool Dispatch(std::span<const CommandRow> table, const ApplicationSettings& settings, ConsoleOutput& console,
              const OStringArray& words) {
    if (words.GetSize() == 0) {
        console.PrintMessage("error:CommandNotSpecified");
        return false;
    }
    const CommandRow* const row = FindCommand(table, words[0].Wide());
    if (!row) {
        console.PrintMessage("error:CommandUnknown", words[0]);
        return false;
    }
    Arguments arguments;
    std::transform(words.begin() + 1, words.end(), std::back_inserter(arguments),
                   [](const OString& word) { return word.Wide(); });
    return row->make(settings, console, arguments)->Run();
}

} // namespace kemba
