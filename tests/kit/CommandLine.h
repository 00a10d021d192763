// Command lines by the rules of the Microsoft C runtime.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// The word in the form that a started program reads back as exactly that word. The program path, which comes
/// first, follows other rules and must not hold a quote.
std::wstring QuoteWord(std::wstring_view word);

/// All words with a blank between them.
std::wstring MakeCommandLine(const std::vector<std::wstring>& words);

} // namespace kit
