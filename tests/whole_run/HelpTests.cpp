// help: which page which topic shows.
#include <string>

#include "messages/TextResource.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

std::string PageOf(const char* key) {
    const std::string page = TextResource().GetText(key).Narrow();
    EXPECT_NE(page, "") << key;
    return page + "\r\n";
}

struct Topic {
    const wchar_t* word;
    const char* key;
};

constexpr Topic kTopics[] = {
    {L"commands", "help:commands"}, {L"usage", "help:usage"},     {L"import", "help:import"},
    {L"export", "help:export"},     {L"action", "help:action"},   {L"send", "help:send"},
    {L"settings", "help:settings"}, {L"version", "help:version"}, {L"queue", "help:queue"},
    {L"set", "help:set"},           {L"get", "help:get"},         {L"help", "help:help"},
};

class Help : public WholeRunTest {};

TEST_F(Help, EveryTopicShowsItsPageInAnyCase) {
    for (const Topic& topic : kTopics) {
        SCOPED_TRACE(topic.key);
        const std::string page = PageOf(topic.key);
        std::wstring upper = topic.word;
        for (wchar_t& letter : upper) {
            letter = static_cast<wchar_t>(letter - L'a' + L'A');
        }
        for (const std::wstring& word : {std::wstring(topic.word), upper}) {
            const auto run = Run({L"help", word});
            EXPECT_EQ(run.output, page);
            EXPECT_EQ(run.status, 0);
        }
    }
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Help, TheGeneralPageReadsLineByLine) {
    EXPECT_EQ(Run({L"help"}).output,
              Output({
                  "KEMBA - Brandle Driver Automation Layer",
                  "",
                  "KEMBA is a command line tool to automate many common driver operations.",
                  "",
                  "For more information, type the following:",
                  "",
                  "   kemba help commands     Lists all commands.",
                  "   kemba help <command>    Help on a specific command.",
                  "   kemba help usage        Generic command line arguments.",
              }));
}

TEST_F(Help, TheCommandsPageReadsLineByLine) {
    EXPECT_EQ(Run({L"help", L"commands"}).output,
              Output({
                  "Commands:",
                  "   action      Performs various actions on the printer driver.",
                  "   get         Get printer information.",
                  "   queue       Allows control of the printer queue.",
                  "   send        Sends a file to the printer.",
                  "   set         Set printer information.",
                  "   settings    Manipulate the settings of the printer driver.",
                  "   version     Gets version information.",
              }));
}

TEST_F(Help, TheUsagePageReadsLineByLine) {
    EXPECT_EQ(Run({L"help", L"usage"}).output,
              Output({
                  "KEMBA usage:",
                  "",
                  "KEMBA [options] command [args ...]",
                  "",
                  "[options]:",
                  "",
                  "   /p <name> - Specify Printer.  This option can be used multiple times to",
                  "   specify more than one printer.",
                  "   ",
                  "   example: kemba /p \"Printer1\" /p \"Printer2\" get status",
                  "",
                  "   /a - All Printers.  The command will be executed for each printer driver",
                  "   installed on the system.",
                  "",
                  "   example: kemba /a settings import \"C:\\somefile.txt\"",
                  "",
                  "   /q - Quiet Mode.  No errors or warnings will be displayed.",
                  "",
                  "   example: kemba /p \"Printer 1\" /q settings import \"C:\\somefile.txt\"",
                  "",
                  "   command - a specific action to perform.  Commands have their own help",
                  "   section. See individual command help for more information.",
                  "   ",
                  "   [args] - These are the arguments for the command.  See individual help",
                  "   for commands.",
                  "",
                  "   The default printer is used if no printers are specified.",
                  "      ",
                  "   Not all commands support multiple printers.  Check the help for the",
                  "   command to see if it supports multiple printers.",
              }));
}

TEST_F(Help, EveryRoadToTheGeneralPageIsASuccess) {
    const std::string page = PageOf("help:help");
    for (const Words& words : {Words{L"help"}, Words{L"?"}, Words{L"HELP", L"Help"}, Words{L"/?"},
                               Words{L"-?"}, Words{L"get", L"/?", L"status"}}) {
        const auto run = Run(words);
        EXPECT_EQ(run.output, page);
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(Help, AnUnknownTopicIsReportedAndStillASuccess) {
    for (const wchar_t* const word : {L"foo", L"?", L"", L"helpx", L"command"}) {
        const auto run = Run({L"help", word});
        EXPECT_EQ(run.output, Output({"No help exists for '" + Printed(word) + "' command."}));
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(Help, WordsAfterTheTopicAreIgnored) {
    EXPECT_EQ(Run({L"help", L"send", L"get", L"foo"}).output, PageOf("help:send"));
}

TEST_F(Help, TheCommandOfAPageInitialisesTheRuntimeOnceMoreAndNothingElse) {
    Run({L"help", L"get"});
    EXPECT_EQ(server.Journal(),
              (Lines{"CoInitialize(2)", "CoInitialize(2)", "CoUninitialize()", "CoUninitialize()"}));
    server.ClearJournal();
    Run({L"help", L"usage"});
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

TEST_F(Help, NoPrinterIsSelectedOrChecked) {
    const auto run = Run({L"/p", L"Nobody", L"help", L"get"});
    EXPECT_EQ(run.output, PageOf("help:get"));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Help, QuietModePrintsNoPage) {
    const auto run = Run({L"/q", L"help"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 0);
}

} // namespace
