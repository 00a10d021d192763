// Dispatcher.
#include "cli/Dispatcher.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "core/OArray.h"
#include "core/WordTable.h"
#include "messages/ConsoleOutput.h"

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
