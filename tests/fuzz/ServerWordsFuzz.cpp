// The words of the server program.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "substitute/registration/Registration.h"
#include "substitute/server/CommandLine.h"
#include "tests/fuzz/Fuzz.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

using Verb = CommandLine::Verb;

/// A word as a switch's name in lower case; empty for any other word.
std::wstring SwitchOf(const std::wstring& word) {
    if (word.empty() || (word[0] != L'/' && word[0] != L'-') || word.find(L'\0') != word.npos) {
        return {};
    }
    std::wstring name = word.substr(1);
    std::transform(name.begin(), name.end(), name.begin(), [](wchar_t unit) {
        return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    });
    return name;
}

/// What the usage text allows, and nothing else.
CommandLine Expected(const std::vector<std::wstring>& words) {
    std::vector<std::wstring> names(words.size());
    std::transform(words.begin(), words.end(), names.begin(), SwitchOf);
    if (names.empty()) {
        return {};
    }
    const std::wstring verb = names.front();
    names.erase(names.begin());
    if (verb == L"embedding" || verb == L"automation") {
        return {.verb = names.empty() ? Verb::Serve : Verb::Usage};
    }
    const auto users = std::count(names.begin(), names.end(), L"user");
    const auto replaces = std::count(names.begin(), names.end(), L"replace");
    const bool understood = users <= 1 && replaces <= (verb == L"regserver" ? 1 : 0) &&
                            static_cast<std::size_t>(users + replaces) == names.size();
    if (!understood || (verb != L"regserver" && verb != L"unregserver")) {
        return {};
    }
    return {.verb = verb == L"regserver" ? Verb::Register : Verb::Unregister,
            .scope = users != 0 ? Scope::CurrentUser : Scope::Machine,
            .replace = replaces != 0};
}

std::wstring DrawWord(Case& input) {
    constexpr const wchar_t* kNames[] = {L"regserver", L"unregserver", L"user",      L"user",
                                         L"replace",   L"automation",  L"Embedding", L"regserver",
                                         L"use",       L"regservers",  L"",          L"?"};
    if (input.OnceIn(16)) {
        return input.WideText(40);
    }
    std::wstring word = (input.OnceIn(2)   ? L"/"
                         : input.OnceIn(8) ? L""
                                           : L"-") +
                        std::wstring(input.OneOf(kNames));
    for (wchar_t& unit : word) {
        const bool isLetter = (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
        unit = static_cast<wchar_t>(isLetter && input.OnceIn(4) ? unit ^ 0x20 : unit);
    }
    if (input.OnceIn(30)) {
        word.push_back(L'\0');
    }
    return word;
}

FUZZ_TARGET(ServerWords, 10'000) {
    std::vector<std::wstring> words(input.Below(5));
    std::vector<std::wstring_view> views;
    for (std::wstring& word : words) {
        word = DrawWord(input);
        views.push_back(word);
        input.Say([&] { return "word: " + Literal(word); });
    }
    const CommandLine read = kemba::substitute::ParseCommandLine(views);
    const CommandLine expected = Expected(words);
    EXPECT_EQ(read.verb, expected.verb);
    EXPECT_EQ(read.scope, expected.scope);
    EXPECT_EQ(read.replace, expected.replace);
}

} // namespace
