// The server program's words.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "substitute/registration/Registration.h"
#include "substitute/server/CommandLine.h"

using namespace kemba::substitute;

namespace {

using Verb = CommandLine::Verb;

TEST(ServerCommandLine, WordsAreUnderstoodAsAWholeOrNotAtAll) {
    const struct {
        std::vector<std::wstring_view> words;
        Verb verb;
        Scope scope = Scope::Machine;
        bool replace = false;
    } rows[] = {
        {{L"/regserver"}, Verb::Register},
        {{L"-RegServer"}, Verb::Register},
        {{L"/regserver", L"/user"}, Verb::Register, Scope::CurrentUser},
        {{L"/regserver", L"-Replace"}, Verb::Register, Scope::Machine, true},
        {{L"/regserver", L"/user", L"/replace"}, Verb::Register, Scope::CurrentUser, true},
        {{L"/regserver", L"/replace", L"/user"}, Verb::Register, Scope::CurrentUser, true},
        {{L"/unregserver"}, Verb::Unregister},
        {{L"-UNREGSERVER", L"-User"}, Verb::Unregister, Scope::CurrentUser},
        {{L"-Embedding"}, Verb::Serve},
        {{L"/Embedding"}, Verb::Serve},
        {{L"/automation"}, Verb::Serve},
        {{L"-Automation"}, Verb::Serve},
        {{}, Verb::Usage},
        {{L""}, Verb::Usage},
        {{L"regserver"}, Verb::Usage},
        {{L"/reg"}, Verb::Usage},
        {{L"/user"}, Verb::Usage},
        {{L"/user", L"/regserver"}, Verb::Usage},
        {{L"/regserver", L"/all"}, Verb::Usage},
        {{L"/regserver", L"/user", L"/user"}, Verb::Usage},
        {{L"/regserver", L"/replace", L"/replace"}, Verb::Usage},
        {{L"/unregserver", L"/replace"}, Verb::Usage},
        {{L"/unregserver", L"/user", L"/replace"}, Verb::Usage},
        {{L"-Embedding", L"/user"}, Verb::Usage},
        {{std::wstring_view(L"-regserver\0", 11)}, Verb::Usage},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words.empty() ? std::wstring(L"no word") : std::wstring(row.words.front()));
        const CommandLine read = ParseCommandLine(row.words);
        EXPECT_EQ(read.verb, row.verb);
        EXPECT_EQ(read.scope, row.scope);
        EXPECT_EQ(read.replace, row.replace);
    }
}

} // namespace
