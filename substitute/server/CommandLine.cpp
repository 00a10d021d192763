// Reading the server program's words.
#include "substitute/server/CommandLine.h"

#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

#include "core/OString.h"
#include "substitute/registration/Registration.h"

namespace kemba::substitute {
namespace {

bool IsSwitch(std::wstring_view word, const wchar_t* name) {
    return (word.starts_with(L'/') || word.starts_with(L'-')) && word.size() == 1 + std::wcslen(name) &&
           OCore::EqualsIgnoreCase(std::wstring(word.substr(1)).c_str(), name);
}

} // namespace

CommandLine ParseCommandLine(const std::vector<std::wstring_view>& words) {
    using Verb = CommandLine::Verb;
    if (words.empty()) {
        return {};
    }
    if (words.size() == 1 && (IsSwitch(words[0], L"Embedding") || IsSwitch(words[0], L"automation"))) {
        return {.verb = Verb::Serve};
    }
    const bool registers = IsSwitch(words[0], L"regserver");
    if (!registers && !IsSwitch(words[0], L"unregserver")) {
        return {};
    }
    CommandLine read{.verb = registers ? Verb::Register : Verb::Unregister};
    for (std::size_t index = 1; index < words.size(); ++index) {
        if (IsSwitch(words[index], L"user") && read.scope == Scope::Machine) {
            read.scope = Scope::CurrentUser;
        } else if (registers && IsSwitch(words[index], L"replace") && !read.replace) {
            read.replace = true;
        } else {
            return {}; // unknown, or there twice
        }
    }
    return read;
}

} // namespace kemba::substitute
