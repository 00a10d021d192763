// Option parser.
#include "cli/OptionParser.h"

#include <cstdint>
#include <vector>

#include "cli/ApplicationSettings.h"
#include "core/OArray.h"
#include "core/OString.h"

namespace kemba {
namespace {

/// The option's letter in lower case, or 0 for a word that is no option. Only the second character
/// counts, so "/printer" is "/p" too.
wchar_t OptionLetter(const OString& word) {
    const wchar_t* const text = word.Wide();
    if (text[0] != L'/' && text[0] != L'-') {
        return 0;
    }
    switch (text[1]) {
    case L'P': return L'p';
    case L'A': return L'a';
    case L'Q': return L'q';
    default: return text[1];
    }
}

} // namespace

bool ParseOptions(ApplicationSettings& settings, OStringArray& words) {
    std::vector<std::int32_t> consumed;
    for (std::int32_t index = 0; index < words.GetSize(); ++index) {
        switch (OptionLetter(words[index])) {
        case L'p':
            if (index + 1 == words.GetSize()) {
                return false;
            }
            consumed.push_back(index);
            consumed.push_back(++index);
            OCore::RequireMemory(settings.printerNames.Append(words[index]));
            break;
        case L'a':
            settings.allPrinters = true;
            consumed.push_back(index);
            break;
        case L'q':
            settings.quiet = true;
            consumed.push_back(index);
            break;
        case L'?':
            words.RemoveAll();
            OCore::RequireMemory(words.Append(L"help"));
            return true;
        default: break; // not a global option: the command may know it
        }
    }
    for (auto index = consumed.rbegin(); index != consumed.rend(); ++index) {
        words.RemoveAt(*index);
    }
    return true;
}

} // namespace kemba
