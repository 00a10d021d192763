// The command table against the classes, the catalogue and the tests: a command is its pair of files, one
// row, and its text.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "cli/Dispatcher.h"
#include "commands/CommandTable.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "core/WordTable.h"
#include "messages/ConsoleOutput.h"
#include "messages/TextResource.h"
#include "tests/commands/Sources.h"
#include "tests/kit/StdoutCapture.h"

using namespace kemba;
using namespace kit;

namespace {

using Names = std::set<std::string>;

constexpr char kTable[] = "commands/CommandTable.cpp";
constexpr char kCatalogue[] = "messages/KEMBA[ENU].TXT";

class CommandTable : public testing::Test {
  protected:
    std::unique_ptr<Command_Base> Make(const CommandRow& row) const {
        return row.make(m_settings, m_console, {});
    }

    /// What stands behind "Command_" in the name of the row's class. Help has the base's name for messages.
    std::string ClassOf(const CommandRow& row) const {
        const std::string name = Make(row)->GetName().Narrow();
        return name == Command_Base(m_settings, m_console, {}).GetName().Narrow() ? "Help" : name;
    }

    const bool m_quiet = false;
    mutable ConsoleOutput m_console{m_quiet};
    const ApplicationSettings m_settings{};
};

std::string Narrow(const wchar_t* word) {
    return OString(word).Narrow();
}

/// "action" for "Action".
std::string WordFor(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return name;
}

TEST_F(CommandTable, HasARowForEveryPairOfFiles) {
    Names classes;
    for (const CommandRow& row : TheCommands()) {
        classes.insert(ClassOf(row));
    }
    Names files;
    for (const std::string& path : SourcesIn("commands")) {
        for (const std::string& name : FindAll(path, "Command_(\\w+)\\.h$")) {
            files.insert(name);
        }
    }
    EXPECT_EQ(files, classes) << "each commands/Command_NAME.h needs a row in " << kTable
                              << ", and NAME is what its GetName gives";
}

TEST_F(CommandTable, FindsEachRowByItsWordOrTopic) {
    for (const CommandRow& row : TheCommands()) {
        SCOPED_TRACE(ClassOf(row));
        EXPECT_TRUE(row.word || row.topic) << "a row of " << kTable << " without both is never found";
        for (const auto column : {&CommandRow::word, &CommandRow::topic}) {
            if (const wchar_t* const word = row.*column) {
                EXPECT_EQ(Narrow(word), WordFor(Narrow(word))) << "words are written in lower case";
                EXPECT_EQ(std::ranges::count_if(TheCommands(),
                                                [&](const CommandRow& other) {
                                                    return other.*column &&
                                                           OCore::EqualsIgnoreCase(other.*column, word);
                                                }),
                          1)
                    << "two rows of " << kTable << " share " << Narrow(word);
            }
        }
    }
}

TEST_F(CommandTable, CallsEachCommandByTheNameOfItsClass) {
    for (const CommandRow& row : TheCommands()) {
        const std::string word = WordFor(ClassOf(row));
        if (row.topic) {
            EXPECT_EQ(Narrow(row.topic), word) << "the row in " << kTable << " names another class";
        }
        if (row.word) {
            EXPECT_EQ(Narrow(row.word), Narrow(row.word) == "?" ? "?" : word)
                << "the row in " << kTable << " names another class";
        }
    }
}

TEST_F(CommandTable, HasATopicForEveryCommandWithTheCataloguesPage) {
    for (const CommandRow& row : TheCommands()) {
        SCOPED_TRACE(ClassOf(row));
        if (ClassOf(row) == "Help") {
            EXPECT_EQ(row.topic, nullptr) << "help shows its own page itself";
            continue;
        }
        ASSERT_NE(row.topic, nullptr) << "name its help topic in " << kTable;
        const std::string key = "help:" + Narrow(row.topic);
        const std::string page = TextResource().GetText(key.c_str()).Narrow();
        EXPECT_NE(page, "") << "write the section #" << key << " of " << kCatalogue;
        StdoutCapture capture;
        Make(row)->ShowHelp();
        EXPECT_EQ(capture.Finish(), page + "\r\n") << "ShowHelp prints " << key;
    }
}

TEST_F(CommandTable, HasTheWordsThatTheirPageLists) {
    const std::vector<std::string> listed =
        FindAll(TextResource().GetText("help:commands").Narrow(), "\n +(\\w+)  ");
    Names words;
    for (const CommandRow& row : TheCommands()) {
        if (row.word && row.topic) {
            words.insert(Narrow(row.word));
        }
    }
    EXPECT_EQ(Names(listed.begin(), listed.end()), words)
        << "the section #help:commands of " << kCatalogue << " lists the commands of " << kTable;
}

TEST_F(CommandTable, HasWholeRunTestsOfEveryCommand) {
    for (const CommandRow& row : TheCommands()) {
        if (row.word) {
            const std::string tests = "tests/whole_run/" + ClassOf(row) + "Tests.cpp";
            EXPECT_TRUE(std::filesystem::exists(tests)) << "write " << tests;
        }
    }
}

TEST_F(CommandTable, NamesClassesThatAreShort) {
    for (const std::string& path : SourcesIn("commands")) {
        const std::string text = ReadSource(path);
        EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 150) << path;
    }
}

/// Help has neither a page of its own nor work on a printer, and an export no work on one printer of several.
TEST_F(CommandTable, LeavesTheBasesWordsToWhoDoesNotDoWhatTheySay) {
    const CommandRow* const help = OCore::FindRow(TheCommands(), L"help");
    const CommandRow* const exporting = OCore::FindRow(TheCommands(), L"export", &CommandRow::topic);
    StdoutCapture capture;
    Make(*help)->ShowHelp();
    EXPECT_FALSE(Make(*help)->Execute(L"Label A"));
    EXPECT_FALSE(Make(*exporting)->Execute(L"Label A"));
    EXPECT_EQ(capture.Finish(),
              "Help not implemented!\r\nCommand not implemented!\r\nCommand not implemented!\r\n");
    EXPECT_STREQ(Make(*help)->GetName().Narrow(), "Command Base");
}

/// A printer may go between the selection of the settings command and that of its export.
TEST_F(CommandTable, HasAnExportThatWithoutAPrinterFailsUnannounced) {
    ApplicationSettings settings;
    OCore::RequireMemory(settings.printerNames.Append(L"no such printer"));
    const CommandRow* const exporting = OCore::FindRow(TheCommands(), L"export", &CommandRow::topic);
    StdoutCapture capture;
    EXPECT_FALSE(exporting->make(settings, m_console, {L"C:\\dock.vqs"})->Run());
    EXPECT_EQ(capture.Finish(),
              "The printer 'no such printer' is not found.\r\nNo printers selected for this operation.\r\n");
}

} // namespace
