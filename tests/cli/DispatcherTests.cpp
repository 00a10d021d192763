// The dispatcher: it walks the table it is given.
#include <gtest/gtest.h>

#include <string>

#include "automation/ComError.h"
#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "cli/Dispatcher.h"
#include "core/OArray.h"
#include "messages/ConsoleOutput.h"
#include "tests/cli/Console.h"
#include "tests/kit/Printed.h"

using namespace kemba;
using namespace kit;

namespace {

/// What the commands of these tests leave behind.
struct Traces {
    Words arguments;
    int alive = 0;
    int runs = 0;
};
Traces traces;

class Recording : public Command_Base {
  public:
    Recording(const ApplicationSettings& settings, ConsoleOutput& console, const kemba::Arguments& words)
        : Command_Base(settings, console, words) {
        ++traces.alive;
    }
    ~Recording() override { --traces.alive; }
    bool Run() override {
        EXPECT_EQ(traces.alive, 1);
        ++traces.runs;
        traces.arguments.assign(GetArguments().begin(), GetArguments().end());
        return true;
    }
};

class Failing : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Run() override { return false; }
};

class Throwing : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Run() override { throw kemba::ComError(E_ABORT); }
};

constexpr CommandRow kTable[] = {
    {L"record", nullptr, MakeCommand<Recording>}, {L"?", nullptr, MakeCommand<Recording>},
    {L"fail", nullptr, MakeCommand<Failing>},     {L"fail", nullptr, MakeCommand<Recording>},
    {L"throw", nullptr, MakeCommand<Throwing>},
};

struct Dispatcher : testing::Test {
    Dispatcher() { traces = {}; }

    bool Dispatch(const Words& words) {
        OStringArray array;
        for (const std::wstring& word : words) {
            OCore::RequireMemory(array.Append(word.c_str()));
        }
        return kemba::Dispatch(kTable, settings, console, array);
    }

    ApplicationSettings settings;
    CapturedConsole console;
};

TEST_F(Dispatcher, AnEmptyListIsNoCommand) {
    EXPECT_FALSE(Dispatch({}));
    EXPECT_EQ(console.Output(), "Error: No command specified.\r\n");
}

TEST_F(Dispatcher, TheWordIsComparedWholeAndIgnoringCase) {
    for (const wchar_t* const word : {L"record", L"RECORD", L"Record", L"?"}) {
        EXPECT_TRUE(Dispatch({word}));
    }
    EXPECT_EQ(traces.runs, 4);
    for (const wchar_t* const word : {L"recor", L"records", L"", L" record"}) {
        EXPECT_FALSE(Dispatch({word}));
    }
    EXPECT_EQ(console.Output(), "The command 'recor' is unknown.\r\nThe command 'records' is unknown.\r\n"
                                "The command '' is unknown.\r\nThe command ' record' is unknown.\r\n");
}

TEST_F(Dispatcher, TheOtherWordsAreTheArguments) {
    EXPECT_TRUE(Dispatch({L"record", L"one", L"", L"record"}));
    EXPECT_EQ(traces.arguments, (Words{L"one", L"", L"record"}));
}

TEST_F(Dispatcher, TheFirstMatchDecidesAndItsResultIsReturned) {
    EXPECT_FALSE(Dispatch({L"fail"}));
    EXPECT_EQ(traces.runs, 0);
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Dispatcher, TheCommandLivesForItsRunAlone) {
    EXPECT_TRUE(Dispatch({L"record"}));
    EXPECT_EQ(traces.alive, 0);
}

TEST_F(Dispatcher, WhatARunThrowsPassesThrough) {
    try {
        Dispatch({L"throw"});
        FAIL() << "nothing was thrown";
    } catch (const kemba::ComError& error) {
        EXPECT_EQ(error.Status(), E_ABORT);
    }
    EXPECT_EQ(console.Output(), "");
}

} // namespace
