// The server program's words.
#pragma once

#include <string_view>
#include <vector>

#include "substitute/registration/Registration.h"

namespace kemba::substitute {

struct CommandLine {
    enum class Verb { Usage, Register, Unregister, Serve };

    Verb verb = Verb::Usage;
    Scope scope = Scope::Machine;
    bool replace = false; ///< register in the place of another program
};

inline constexpr wchar_t kUsage[] =
    L"usage: kemba-dal /regserver [/user] [/replace]   register for all users, or for this one; /replace: "
    L"also in\r\n"
    L"                                                 the place of another program\r\n"
    L"       kemba-dal /unregserver [/user]            remove that registration, put back what was there "
    L"before\r\n"
    L"       kemba-dal /automation                     serve clients (COM starts it so)\r\n";

/// Reads the words after the program's name; "/" and "-" are alike, case does not matter. COM's "-Embedding"
/// and "/automation" mean the same. Anything that is not understood as a whole asks for the usage text.
CommandLine ParseCommandLine(const std::vector<std::wstring_view>& words);

} // namespace kemba::substitute
