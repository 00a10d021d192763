// The words on the commands' help pages against the words that the commands take.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "cli/ApplicationSettings.h"
#include "commands/CommandTable.h"
#include "core/WordTable.h"
#include "messages/ConsoleOutput.h"
#include "messages/TextResource.h"
#include "tests/commands/Sources.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/StdoutCapture.h"

using namespace kemba;
using namespace kit;

namespace {

using Words = std::set<std::string>;

std::string InLowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

Words InLowerCase(const std::vector<std::string>& words) {
    Words result;
    for (const std::string& word : words) {
        result.insert(InLowerCase(word));
    }
    return result;
}

/// The words that stand before a dash on the page.
std::vector<std::string> PageWords(const std::string& command) {
    return FindAll(TextResource().GetText(("help:" + command).c_str()).Narrow(), "\n +(\\w+) +- ");
}

/// Where a command's words stand: the expression finds one in its source.
struct TableRow {
    const char* command;
    const char* file;
    const char* expression;
};

constexpr TableRow kTables[] = {
    {"action", "automation/Actions.h", "\n +\\{L\"(\\w+)\", ActionCode"},
    {"get", "commands/Command_Get.cpp", "\n +\\{L\"(\\w+)\", Read"},
    {"set", "commands/Command_Set.cpp", "\n +\\{L\"(\\w+)\", &"},
    {"queue", "commands/Command_Queue.cpp", "\n +\\{L\"(\\w+)\", &"},
    {"settings", "commands/Command_Settings.cpp", "EqualsIgnoreCase\\(word, L\"(\\w+)\""},
    {"version", "commands/Command_Version.cpp", "\n +\\{L\"(\\w+)\", (?:true|false)"},
};

TEST(HelpPageWords, AreTheOnesOfTheCommandsTable) {
    for (const TableRow& row : kTables) {
        const Words table = InLowerCase(FindAll(ReadSource(row.file), row.expression));
        EXPECT_FALSE(table.empty()) << "no words in " << row.file;
        EXPECT_EQ(InLowerCase(PageWords(row.command)), table)
            << "the section #help:" << row.command << " explains the words in " << row.file;
    }
}

/// The commands that look at their word for each printer; whole runs look at the others.
TEST(HelpPageWords, AreTaken) {
    FakeServer server;
    const bool quiet = false;
    ConsoleOutput console(quiet);
    const ApplicationSettings settings;
    for (const wchar_t* const command : {L"action", L"get", L"queue", L"set"}) {
        for (const std::string& word : PageWords(OString(command).Narrow())) {
            const OString argument(word.c_str());
            StdoutCapture capture;
            EXPECT_TRUE(OCore::FindRow(TheCommands(), command)
                            ->make(settings, console, {argument.Wide(), L"value"})
                            ->Execute(L"Label A"));
            const std::string output = capture.Finish();
            EXPECT_EQ(output.find(" is undefined."), std::string::npos) << word;
            EXPECT_EQ(output.find(" is invalid."), std::string::npos) << word;
        }
    }
    EXPECT_EQ(server.Faults(), Lines{});
}

} // namespace
