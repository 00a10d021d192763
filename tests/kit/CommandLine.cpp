// Command lines by the rules of the Microsoft C runtime.
#include "tests/kit/CommandLine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

std::wstring QuoteWord(std::wstring_view word) {
    if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring_view::npos) {
        return std::wstring(word);
    }
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0; // in front of the present character
    for (const wchar_t character : word) {
        if (character == L'\\') {
            ++backslashes;
            continue;
        }
        // Backslashes count as an escape only in front of a quote.
        quoted.append(character == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        quoted += character;
        backslashes = 0;
    }
    quoted.append(2 * backslashes, L'\\');
    return quoted + L'"';
}

std::wstring MakeCommandLine(const std::vector<std::wstring>& words) {
    std::wstring line;
    for (const std::wstring& word : words) {
        if (!line.empty()) {
            line += L' ';
        }
        line += QuoteWord(word);
    }
    return line;
}

} // namespace kit
