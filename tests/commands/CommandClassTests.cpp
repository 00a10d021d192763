// The command classes: which operation each has of its own, its name and its help page.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>

#include "cli/Dispatcher.h"
#include "commands/Command_Action.h"
#include "commands/Command_Export.h"
#include "commands/Command_Get.h"
#include "commands/Command_Help.h"
#include "commands/Command_Import.h"
#include "commands/Command_Queue.h"
#include "commands/Command_Send.h"
#include "commands/Command_Set.h"
#include "commands/Command_Settings.h"
#include "commands/Command_Version.h"
#include "messages/TextResource.h"
#include "tests/commands/Sources.h"
#include "tests/kit/StdoutCapture.h"

namespace kemba {
namespace {

/// Which of the base's operations a class has of its own.
struct Own {
    bool run;
    bool showHelp;
    bool execute;
    bool getName;
    bool operator==(const Own&) const = default;
};

/// A member that a class inherits is a member of the base in its type as well.
template<class Command>
constexpr Own OwnOf() {
    return {!std::is_same_v<decltype(&Command::Run), decltype(&Command_Base::Run)>,
            !std::is_same_v<decltype(&Command::ShowHelp), decltype(&Command_Base::ShowHelp)>,
            !std::is_same_v<decltype(&Command::Execute), decltype(&Command_Base::Execute)>,
            !std::is_same_v<decltype(&Command::GetName), decltype(&Command_Base::GetName)>};
}

struct Row {
    const char* file;
    const char* name;
    const char* helpKey; ///< null: the base's text
    Own own;
    Own expected;
    decltype(CommandRow::make) make;
};

template<class Command>
constexpr Row RowOf(const char* file, const char* name, const char* helpKey, Own expected) {
    return {file, name, helpKey, OwnOf<Command>(), expected, MakeCommand<Command>};
}

const Row kRows[] = {
    RowOf<Command_Action>("Action", "Action", "help:action", {false, true, true, true}),
    RowOf<Command_Export>("Export", "Export", "help:export", {true, true, false, true}),
    RowOf<Command_Get>("Get", "Get", "help:get", {false, true, true, true}),
    RowOf<Command_Help>("Help", "Command Base", nullptr, {true, false, false, false}),
    RowOf<Command_Import>("Import", "Import", "help:import", {false, true, true, true}),
    RowOf<Command_Queue>("Queue", "Queue", "help:Queue", {false, true, true, true}),
    RowOf<Command_Send>("Send", "Send", "help:send", {false, true, true, true}),
    RowOf<Command_Set>("Set", "Set", "help:set", {false, true, true, true}),
    RowOf<Command_Settings>("Settings", "Settings", "help:settings", {true, true, true, true}),
    RowOf<Command_Version>("Version", "Version", "help:version", {true, true, true, true}),
};

class CommandClass : public testing::TestWithParam<Row> {
  protected:
    const bool m_quiet = false;
    ConsoleOutput m_console{m_quiet};
    const ApplicationSettings m_settings{};
    const std::unique_ptr<Command_Base> m_command = GetParam().make(m_settings, m_console, {});
};

INSTANTIATE_TEST_SUITE_P(Commands, CommandClass, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.file); });

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.file;
}

TEST_P(CommandClass, HasTheseOperationsOfItsOwn) {
    EXPECT_EQ(GetParam().own, GetParam().expected);
}

TEST_P(CommandClass, HasItsName) {
    EXPECT_STREQ(m_command->GetName().Narrow(), GetParam().name);
}

TEST_P(CommandClass, ShowsItsPage) {
    kit::StdoutCapture capture;
    m_command->ShowHelp();
    const std::string page =
        GetParam().helpKey ? TextResource().GetText(GetParam().helpKey).Narrow() : "Help not implemented!";
    EXPECT_FALSE(page.empty());
    EXPECT_EQ(capture.Finish(), page + "\r\n");
}

TEST_P(CommandClass, WithoutAnExecuteOfItsOwnSaysSo) {
    if (GetParam().expected.execute) {
        return;
    }
    kit::StdoutCapture capture;
    EXPECT_FALSE(m_command->Execute(L"Label A"));
    EXPECT_EQ(capture.Finish(), "Command not implemented!\r\n");
}

TEST_P(CommandClass, IsShort) {
    const std::string path = std::string("commands/Command_") + GetParam().file;
    const std::string text = kemba_tests::ReadSource(path + ".h") + kemba_tests::ReadSource(path + ".cpp");
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 150);
}

/// A printer may go between the selection of the settings command and that of its export.
TEST(CommandExport, WithoutAPrinterFailsUnannounced) {
    ApplicationSettings settings;
    OCore::RequireMemory(settings.printerNames.Append(L"no such printer"));
    const bool quiet = false;
    ConsoleOutput console(quiet);
    kit::StdoutCapture capture;
    EXPECT_FALSE(MakeCommand<Command_Export>(settings, console, {L"C:\\dock.vqs"})->Run());
    EXPECT_EQ(capture.Finish(),
              "The printer 'no such printer' is not found.\r\nNo printers selected for this operation.\r\n");
}

} // namespace
} // namespace kemba
