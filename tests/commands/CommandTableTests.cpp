// The command table: words, order and classes.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <typeinfo>
#include <vector>

#include "commands/CommandTable.h"
#include "commands/Command_Action.h"
#include "commands/Command_Get.h"
#include "commands/Command_Help.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Send.h"
#include "commands/Command_Set.h"
#include "commands/Command_Settings.h"
#include "commands/Command_Version.h"
#include "messages/TextResource.h"
#include "tests/commands/Sources.h"

namespace {

using kemba::CommandRow;
using kemba::FindCommand;
using kemba::TheCommands;

const struct {
    const wchar_t* word;
    const std::type_info& type;
} kExpected[] = {
    {L"settings", typeid(kemba::Command_Settings)},
    {L"help", typeid(kemba::Command_Help)},
    {L"?", typeid(kemba::Command_Help)},
    {L"action", typeid(kemba::Command_Action)},
    {L"send", typeid(kemba::Command_Send)},
    {L"version", typeid(kemba::Command_Version)},
    {L"queue", typeid(kemba::Command_Queue)},
    {L"get", typeid(kemba::Command_Get)},
    {L"set", typeid(kemba::Command_Set)},
};

TEST(TheCommands, StandInOrderWithTheirClasses) {
    ASSERT_EQ(TheCommands().size(), std::size(kExpected));
    const bool quiet = false;
    ConsoleOutput console(quiet);
    const kemba::ApplicationSettings settings;
    for (std::size_t index = 0; index < std::size(kExpected); ++index) {
        const CommandRow& row = TheCommands()[index];
        EXPECT_STREQ(row.word, kExpected[index].word);
        const std::unique_ptr<kemba::Command_Base> command = row.make(settings, console, {});
        const kemba::Command_Base& made = *command;
        EXPECT_EQ(typeid(made), kExpected[index].type) << index;
    }
}

TEST(TheCommands, AreFoundInAnyCaseAsWholeWords) {
    const std::pair<const wchar_t*, std::size_t> found[] = {{L"Settings", 0}, {L"HELP", 1}, {L"?", 2},
                                                            {L"aCTION", 3},   {L"SEND", 4}, {L"Version", 5},
                                                            {L"QUEUE", 6},    {L"Get", 7},  {L"SET", 8}};
    for (const auto& [word, index] : found) {
        EXPECT_EQ(FindCommand(TheCommands(), word), &TheCommands()[index]);
    }
    for (const wchar_t* const word :
         {L"", L"import", L"export", L"setting", L"settingss", L"hel", L"??", L"/get", L" get", L"get ",
          L"\x017F"
          L"et"}) {
        EXPECT_EQ(FindCommand(TheCommands(), word), nullptr);
    }
}

TEST(TheCommands, AreTheOnesThatTheirPageLists) {
    TextResource catalogue;
    const std::vector<std::string> listed =
        kemba_tests::FindAll(catalogue.GetText("help:commands").Narrow(), "\n +(\\w+)  ");
    std::set<std::string> words;
    for (const CommandRow& row : TheCommands()) {
        words.insert(OString(row.word).Narrow());
    }
    words.erase("help");
    words.erase("?");
    EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()), words);
}

} // namespace
