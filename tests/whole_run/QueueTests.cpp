// queue: pause, resume, purge, and failures.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Queue : public WholeRunTest {};

struct ActionRow {
    const wchar_t* word;
    const wchar_t* upper;
    const wchar_t* mixed;
    const char* operation;
};

const ActionRow kActions[] = {
    {L"pause", L"PAUSE", L"Pause", "Pause"},
    {L"resume", L"RESUME", L"Resume", "Resume"},
    {L"purge", L"PURGE", L"Purge", "Purge"},
};

void PrintTo(const ActionRow& row, std::ostream* out) {
    *out << row.operation;
}

class QueueAction : public Queue, public testing::WithParamInterface<ActionRow> {};

INSTANTIATE_TEST_SUITE_P(Words, QueueAction, testing::ValuesIn(kActions),
                         [](const auto& row) { return std::string(row.param.operation); });

TEST_P(QueueAction, IsPerformedOnTheQueueOfEveryPrinterWithoutALine) {
    const auto run = RunOnBoth({L"queue", GetParam().word, L"ignored"});
    EXPECT_EQ(run.output, Framed("Queue", {}));
    EXPECT_EQ(run.status, 0);
    Lines expected{"CoInitialize(2)"};
    for (const auto& [number, name] : {std::pair("#1", firstName), std::pair("#2", secondName)}) {
        const std::string automation = std::string("DriverAutomation") + number;
        const std::string queue = std::string("PrinterQueue") + number;
        const Lines lines{"new " + automation,
                          automation + ".Run()",
                          automation + ".QueryInterface(IDriverAutomation)",
                          automation + ".PutPrinterName(\"" + name + "\")",
                          automation + ".GetPrinterQueue()",
                          queue + "." + GetParam().operation + "()",
                          "~" + queue,
                          "~" + automation};
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    expected.push_back("CoUninitialize()");
    EXPECT_EQ(server.Journal(), expected);
}

TEST_P(QueueAction, IsFoundInAnyCase) {
    int object = 0;
    for (const wchar_t* const word : {GetParam().word, GetParam().upper, GetParam().mixed}) {
        EXPECT_EQ(RunOnFirst({L"QUEUE", word}).output, Framed("Queue", {}));
        EXPECT_EQ(server.Calls().back(),
                  "PrinterQueue#" + std::to_string(++object) + "." + GetParam().operation + "()");
    }
}

TEST_F(Queue, WithoutAWordStopsBeforeAnyObjectIsMade) {
    const auto run = RunOnBoth({L"queue"});
    EXPECT_EQ(run.output, Framed("Queue", {"Incorrect number of arguments."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

TEST_F(Queue, AnUnknownWordIsReportedAsTypedForEveryPrinterAfterTheQueueIsFetched) {
    for (const wchar_t* const word : {L"stop", L"paus", L"pauses", L"", L"%1", L"re\x017Fume",
                                      L"\xFF30"
                                      L"ause"}) {
        server.ClearJournal();
        const auto run = RunOnBoth({L"queue", word});
        const std::string rejected = "Argument '" + Printed(word) + "' is invalid.";
        EXPECT_EQ(run.output, Framed("Queue", {rejected, rejected}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(server.Calls().size(), 4U) << "each queue is fetched before the word is looked at";
    }
}

TEST_F(Queue, AnUnknownWordIsInvalidEvenWithoutAQueue) {
    server.GiveNull("IDriverAutomation.GetPrinterQueue");
    const auto run = RunOnFirst({L"queue", L"stop"});
    EXPECT_EQ(run.output, Framed("Queue", {"Argument 'stop' is invalid."}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Queue, AQueueThatCannotBeFetchedIsUnsupportedEvenForAnUnknownWord) {
    server.Fail("IDriverAutomation.GetPrinterQueue", E_FAIL);
    EXPECT_EQ(RunOnFirst({L"queue", L"stop"}).output, Framed("Queue", {kUnsupported}));
}

} // namespace
