// Who serves the contract's classes, while the built server does.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/acceptance/Registered.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/ProcessRun.h"

using namespace kit;

namespace {

TEST(RegisteredServers, AreNamedForEveryClassAndInterface) {
    const std::string program = Narrow(ProgramPath(L"kemba-dal.exe"));
    const auto servers = acceptance::RegisteredServers();
    const auto count = [&servers](const std::string& begin, const std::string& end) {
        return std::ranges::count_if(servers, [&](const std::string& line) {
            return line.starts_with("for all users: " + begin) && line.ends_with(end);
        });
    };
    // In two views, for programs of 64 and of 32 bits.
    EXPECT_EQ(count("CLSID\\{", ", served by \"" + program + "\""), 2 * 3);
    EXPECT_EQ(count("TypeLib\\{92F852BA-8681-4312-8DBC-427E0BA3E3CE}", ", served by " + program), 2);
    EXPECT_EQ(count("Interface\\{", "}"), 2 * 6);
}

} // namespace
