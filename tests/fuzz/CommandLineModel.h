// Command lines: words that mean something, and what the global options make of them by their rules.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/Printed.h"

namespace kit {

struct ParsedModel {
    bool goesOn = true;
    bool all = false;
    bool quiet = false;
    Words printers;
    Words left;
};

/// Words after the program's path; "/p" takes the next word whatever it is, "/?" ends it all.
inline ParsedModel ParsedByModel(const Words& words) {
    const OrdinaryHeap ordinary;
    ParsedModel parsed;
    for (auto word = words.begin(); word != words.end(); ++word) {
        const std::wstring option =
            word->size() > 1 && word->find_first_of(L"/-") == 0 ? word->substr(1, 1) : L"";
        if (option == L"p" || option == L"P") {
            if (++word == words.end()) {
                parsed.goesOn = false;
                return parsed;
            }
            parsed.printers.push_back(*word);
        } else if (option == L"a" || option == L"A") {
            parsed.all = true;
        } else if (option == L"q" || option == L"Q") {
            parsed.quiet = true;
        } else if (option == L"?") {
            parsed.left = {L"help"};
            return parsed;
        } else {
            parsed.left.push_back(*word);
        }
    }
    return parsed;
}

/// Draws words, `commands` among them in any case.
inline Words DrawWords(Case& input, const Words& commands) {
    const OrdinaryHeap ordinary;
    constexpr const wchar_t* kOptions[] = {L"/a", L"-A", L"/q", L"/Quiet", L"-p", L"/P", L"/printer", L"/?",
                                           L"/",  L"-",  L"",   L"/x",     L"%1", L"-n", L"\\p",      L"?"};
    Words words;
    for (std::size_t left = input.Length(input.OnceIn(50) ? 300 : 9); left > 0; --left) {
        std::wstring word;
        switch (input.Below(6)) {
        case 0: word = input.OneOf(kOptions); break;
        case 1: word = input.WideText(40); break;
        case 2: word = input.OneOf(kOptions) + input.Name(3); break;
        default: word = input.OneOf(commands); break;
        }
        for (wchar_t& unit : word) {
            const bool isLetter = (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
            unit = static_cast<wchar_t>(isLetter && input.OnceIn(8) ? unit ^ 0x20 : unit);
        }
        words.push_back(word);
    }
    return words;
}

inline std::string Literal(const Words& words) {
    std::string literal;
    for (const std::wstring& word : words) {
        literal += (literal.empty() ? "" : ", ") + Literal(std::wstring_view(word));
    }
    return "{" + literal + "}";
}

/// Whether two words are the same but for the case of the letters a to z.
inline bool IsSameWord(std::wstring left, std::wstring right) {
    for (std::wstring* const word : {&left, &right}) {
        for (wchar_t& unit : *word) {
            unit = unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 32) : unit;
        }
    }
    return left == right;
}

} // namespace kit
