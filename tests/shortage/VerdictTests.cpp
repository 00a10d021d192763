// The judge of the sweep sees each kind of wrong.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/shortage/CommandLines.h"
#include "tests/shortage/Run.h"
#include "tests/shortage/Verdict.h"

using namespace kit;

namespace {

const std::string kHeader = "Executing 'Get' command.\r\n";
const std::string kFinished = "Finished processing command.\r\n";

Outcome Ended(DWORD status, std::string output, std::vector<std::string> calls,
              std::string refused = "malloc") {
    Outcome run;
    run.status = status;
    run.output = std::move(output);
    run.calls = std::move(calls);
    run.refusedCall = std::move(refused);
    run.isComplete = status != kAbnormalEnd;
    run.heapBlocks = 10;
    return run;
}

const std::string kBind = "DriverAutomation#1.PutPrinterName(\"Dock 2\")";
const std::string kRead = "DriverAutomation#1.GetComment()";
const Outcome kUndisturbed = Ended(0, kHeader + "Dock 2: x\r\n" + kFinished, {kBind, kRead});
const Outcome kNotBound = Ended(0, kHeader + "Not supported.\r\n" + kFinished, {});
const std::vector<Outcome> kWays{kUndisturbed, kNotBound};

Wrong WrongOf(const Outcome& run, Handling handling = Handling::Unspecified) {
    return Judge(run, kWays, handling).wrong;
}

TEST(ShortageVerdict, TakesTheOrdinaryEnd) {
    EXPECT_EQ(WrongOf(kUndisturbed), Wrong::Nothing);
}

TEST(ShortageVerdict, TakesAnAbnormalEndAnywhereOnTheWay) {
    EXPECT_EQ(WrongOf(Ended(3, "", {})), Wrong::Nothing);
    EXPECT_EQ(WrongOf(Ended(3, kHeader + "Dock", {kBind})), Wrong::Nothing);
}

TEST(ShortageVerdict, TakesAnArgumentsFailureForThatOfItsCall) {
    EXPECT_EQ(WrongOf(Ended(0, kNotBound.output, {}, "SysAllocStringLen")), Wrong::Nothing);
    EXPECT_EQ(WrongOf(Ended(0, kNotBound.output, {}, "malloc")), Wrong::WrongWork);
}

TEST(ShortageVerdict, TakesTheCommandsOwnHandling) {
    const Outcome unspecified = Ended(2, kHeader + "Unspecified error.\r\n" + kFinished, {kBind});
    const Outcome finished = Ended(2, kHeader + "Dock 2" + kFinished, {kBind, kRead});
    const Outcome silent = Ended(2, kHeader, {kBind});
    EXPECT_EQ(WrongOf(unspecified, Handling::Unspecified), Wrong::Nothing);
    EXPECT_EQ(WrongOf(unspecified, Handling::Either), Wrong::Nothing);
    EXPECT_EQ(WrongOf(unspecified, Handling::Finished), Wrong::WrongOutput);
    EXPECT_EQ(WrongOf(finished, Handling::Finished), Wrong::Nothing);
    EXPECT_EQ(WrongOf(finished, Handling::Either), Wrong::Nothing);
    EXPECT_EQ(WrongOf(finished, Handling::Unspecified), Wrong::WrongOutput);
    EXPECT_EQ(WrongOf(silent, Handling::Silent), Wrong::Nothing);
    EXPECT_EQ(WrongOf(silent, Handling::None), Wrong::WrongOutput);
}

TEST(ShortageVerdict, SeesOtherOrMissingWorkWithStatus0) {
    EXPECT_EQ(WrongOf(Ended(0, kUndisturbed.output, {kRead, kBind})), Wrong::WrongWork);
    EXPECT_EQ(WrongOf(Ended(0, kUndisturbed.output, {kBind})), Wrong::WrongWork);
    EXPECT_EQ(WrongOf(Ended(0, kHeader, {kBind, kRead})), Wrong::WrongWork);
    EXPECT_EQ(WrongOf(Ended(0, "", {})), Wrong::WrongWork);
}

TEST(ShortageVerdict, SeesOtherWorkBeforeAnAbnormalEnd) {
    EXPECT_EQ(WrongOf(Ended(3, "", {kRead})), Wrong::WrongWork);
    EXPECT_EQ(WrongOf(Ended(3, "something else", {})), Wrong::WrongOutput);
}

TEST(ShortageVerdict, SeesAWrongMessage) {
    EXPECT_EQ(WrongOf(Ended(2, "No printers selected for this operation.\r\n", {})), Wrong::WrongOutput);
}

TEST(ShortageVerdict, SeesOtherStatuses) {
    EXPECT_EQ(WrongOf(Ended(1, "", {})), Wrong::WrongStatus);
    EXPECT_EQ(WrongOf(Ended(255, "", {})), Wrong::WrongStatus);
}

TEST(ShortageVerdict, SeesHangsCrashesAndWords) {
    Outcome hung = kUndisturbed;
    hung.timedOut = true;
    EXPECT_EQ(WrongOf(hung), Wrong::Hang);
    EXPECT_EQ(WrongOf(Ended(0xC0000005, "", {})), Wrong::Crash);
    Outcome loud = Ended(3, "", {});
    loud.errors = "terminate called";
    EXPECT_EQ(WrongOf(loud), Wrong::Word);
}

TEST(ShortageVerdict, SeesWhatWasNotGivenBack) {
    Outcome leaking = Ended(2, kHeader + "Unspecified error.\r\n" + kFinished, {kBind});
    leaking.heapBlocks = 11;
    EXPECT_EQ(WrongOf(leaking), Wrong::NotGivenBack);
    leaking.heapBlocks = 10;
    leaking.handles = 1;
    EXPECT_EQ(WrongOf(leaking), Wrong::NotGivenBack);
    leaking.handles = 2;
    EXPECT_EQ(WrongOf(leaking), Wrong::Nothing) << "the first exception's";
    leaking.heapBlocks = 21;
    EXPECT_EQ(WrongOf(leaking), Wrong::NotGivenBack);
    leaking.handles = 0;
    leaking.heapBlocks = 10;
    leaking.faults = {"not given back: 1 registry keys"};
    EXPECT_EQ(WrongOf(leaking), Wrong::NotGivenBack);
}

TEST(ShortageVerdict, KnowsATextOfTheSystemThatCouldNotBeMade) {
    const auto failure = [](const char* text, const char* refused) {
        return Ended(0, std::string("*** COM Exception ***\r\nError: ") + text + "\r\n", {kBind}, refused);
    };
    const std::vector<Outcome> ways{failure("Access denied.", "")};
    for (const char* const text : {"Access denied.", "Unknown error 0x80070005", ""}) {
        EXPECT_EQ(Judge(failure(text, "FormatMessageW"), ways, Handling::None).wrong, Wrong::Nothing) << text;
    }
    EXPECT_EQ(Judge(failure("", "malloc"), ways, Handling::None).wrong, Wrong::WrongWork);
}

TEST(ShortageVerdict, FindsTheArgumentsThatAreAllocated) {
    const std::vector<RefusedArgument> arguments = ArgumentsOf(kUndisturbed);
    ASSERT_EQ(arguments.size(), 1U);
    EXPECT_EQ(arguments[0].call, kBind);
    EXPECT_EQ(arguments[0].failing, "IDriverAutomation.PutPrinterName#1=8007000E");
    EXPECT_EQ(WithoutCall(kUndisturbed, kBind).calls, std::vector<std::string>{kRead});
}

} // namespace
