// Reading the server program's words.
#include "substitute/server/CommandLine.h"

#include <string>

#include "core/OString.h"

namespace kemba::substitute {
namespace {

bool IsSwitch(std::wstring_view word, const wchar_t* name) {
    return !word.empty() && (word[0] == L'/' || word[0] == L'-') &&
           OCore::EqualsIgnoreCase(std::wstring(word.substr(1)).c_str(), name);
}

} // namespace

CommandLine ParseCommandLine(const std::vector<std::wstring_view>& words) {
    using Verb = CommandLine::Verb;
    if (words.size() == 1 && (IsSwitch(words[0], L"Embedding") || IsSwitch(words[0], L"automation"))) {
        return {Verb::Serve, Scope::Machine};
    }
    const bool forUser = words.size() == 2 && IsSwitch(words[1], L"user");
    if (words.size() == 1 || forUser) {
        const Scope scope = forUser ? Scope::CurrentUser : Scope::Machine;
        if (IsSwitch(words[0], L"regserver")) {
            return {Verb::Register, scope};
        }
        if (IsSwitch(words[0], L"unregserver")) {
            return {Verb::Unregister, scope};
        }
    }
    return {};
}

} // namespace kemba::substitute
