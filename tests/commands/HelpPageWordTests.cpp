// The words on the commands' help pages against the words that the commands take.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

#include "cli/Dispatcher.h"
#include "commands/Command_Action.h"
#include "commands/Command_Get.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Set.h"
#include "messages/TextResource.h"
#include "tests/commands/Sources.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/StdoutCapture.h"

namespace kemba {
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
    return kemba_tests::FindAll(TextResource().GetText(("help:" + command).c_str()).Narrow(),
                                "\n +(\\w+) +- ");
}

struct Row {
    const char* command;
    std::size_t count;
    const char* file;
    const char* tableRow;            ///< expression for a word in the command's source
    decltype(CommandRow::make) make; ///< null where the word is not looked at per printer
};

const Row kRows[] = {
    {"action", 17, "Action", "\\n +\\{L\"(\\w+)\", \\d+\\}", MakeCommand<Command_Action>},
    {"get", 6, "Get", "\\n +\\{L\"(\\w+)\", Read", MakeCommand<Command_Get>},
    {"set", 3, "Set", "\\n +\\{L\"(\\w+)\", &", MakeCommand<Command_Set>},
    {"queue", 3, "Queue", "\\n +\\{L\"(\\w+)\", &", MakeCommand<Command_Queue>},
    {"settings", 3, "Settings", "EqualsIgnoreCase\\(word, L\"(\\w+)\"", nullptr},
    {"version", 3, "Version", "\\n +\\{L\"(\\w+)\", (?:true|false)", nullptr},
};

class HelpPageWords : public testing::TestWithParam<Row> {};

INSTANTIATE_TEST_SUITE_P(Commands, HelpPageWords, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.command); });

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.command;
}

TEST_P(HelpPageWords, AreTheOnesOfTheCommandsTable) {
    const std::string source =
        kemba_tests::ReadSource(std::string("commands/Command_") + GetParam().file + ".cpp");
    const Words table = InLowerCase(kemba_tests::FindAll(source, GetParam().tableRow));
    EXPECT_EQ(table.size(), GetParam().count);
    EXPECT_EQ(InLowerCase(PageWords(GetParam().command)), table);
}

TEST_P(HelpPageWords, AreTaken) {
    if (!GetParam().make) {
        return; // whole runs look at these
    }
    kit::FakeServer server;
    const bool quiet = false;
    ConsoleOutput console(quiet);
    const ApplicationSettings settings;
    for (const std::string& word : PageWords(GetParam().command)) {
        const OString argument(word.c_str());
        kit::StdoutCapture capture;
        EXPECT_TRUE(GetParam().make(settings, console, {argument.Wide(), L"value"})->Execute(L"Label A"));
        const std::string output = capture.Finish();
        EXPECT_EQ(output.find(" is undefined."), std::string::npos) << word;
        EXPECT_EQ(output.find(" is invalid."), std::string::npos) << word;
    }
    EXPECT_EQ(server.Faults(), kit::Lines{});
}

} // namespace
} // namespace kemba
