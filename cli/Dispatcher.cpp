// Dispatcher.
#include "cli/Dispatcher.h"

#include <algorithm>
#include <iterator>

#include "core/WordTable.h"

namespace kemba {

bool Dispatch(std::span<const CommandRow> table, const ApplicationSettings& settings, ConsoleOutput& console,
              const OStringArray& words) {
    if (words.GetSize() == 0) {
        console.PrintMessage("error:CommandNotSpecified");
        return false;
    }
    const CommandRow* const row = OCore::FindRow(table, words[0].Wide());
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
