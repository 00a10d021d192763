// Selection in whole runs: which printers a command line works on.
#include <optional>
#include <string>

#include "demo/Printers.h"
#include "demo/SpoolerLock.h"
#include "messages/TextResource.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Printed.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class WholeSelection : public WholeRunTest {
  protected:
    std::string Got(const Lines& names) const {
        Lines lines{"Executing 'Get' command."};
        for (const std::string& name : names) {
            lines.push_back(name + ": Comment of " + name);
        }
        lines.push_back("Finished processing command.");
        return Output(lines);
    }

    const Words get{L"get", L"comment"};
};

TEST_F(WholeSelection, OptionsMayFollowTheCommand) {
    EXPECT_EQ(Run({L"get", L"comment", L"/p", first.Name()}).output, Got({firstName}));
}

TEST_F(WholeSelection, ANameGivenTwiceIsProcessedTwice) {
    EXPECT_EQ(Run({L"/p", first.Name(), L"/p", first.Name(), L"get", L"comment"}).output,
              Got({firstName, firstName}));
}

TEST_F(WholeSelection, PrintersComeInTheOrderGiven) {
    EXPECT_EQ(Run({L"/p", second.Name(), L"get", L"comment", L"/p", first.Name()}).output,
              Got({secondName, firstName}));
}

TEST_F(WholeSelection, UnknownNamesAreReportedBeforeTheOthersAreServed) {
    const auto run = Run({L"/p", L"Nobody", L"/p", first.Name(), L"get", L"comment"});
    EXPECT_EQ(run.output, "The printer 'Nobody' is not found.\r\n" + Got({firstName}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(WholeSelection, OnlyUnknownNamesEndWithoutAnAnnouncement) {
    const auto run = Run({L"/p", L"Nobody", L"get", L"status"});
    EXPECT_EQ(run.output,
              Output({"The printer 'Nobody' is not found.", "No printers selected for this operation."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(WholeSelection, TheDefaultPrinterServesWhereNoneIsNamed) {
    const demo::SpoolerLock lock;
    const demo::DefaultPrinter asDefault(second.Name());
    EXPECT_EQ(Run(get).output, Got({secondName}));
}

TEST_F(WholeSelection, WithoutADefaultPrinterNothingIsSelected) {
    const demo::SpoolerLock lock;
    const demo::DefaultPrinter none(std::nullopt);
    const auto run = Run(get);
    EXPECT_EQ(run.output, Output({"No printers selected for this operation."}));
    EXPECT_EQ(run.status, 2);
}

TEST_F(WholeSelection, AllPrintersIncludeBothAndDoNotCheckNames) {
    const demo::SpoolerLock lock;
    const auto run = Run({L"/a", L"/p", L"Missing", L"get", L"comment"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.find("Missing"), std::string::npos);
    for (const std::string& name : {firstName, secondName}) {
        EXPECT_NE(run.output.find("\r\n" + name + ": Comment of " + name + "\r\n"), std::string::npos);
    }
}

TEST_F(WholeSelection, TheQuestionMarkWinsOverEverything) {
    const auto run = Run({L"/p", L"A", L"/?", L"get"});
    EXPECT_EQ(run.output, Output({TextResource().GetText("help:help").Narrow()}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(WholeSelection, ALeftOverOptionWordIsTheCommandWord) {
    const auto run = Run({L"/x", L"get", L"status"});
    EXPECT_EQ(run.output, Output({"The command '/x' is unknown."}));
    EXPECT_EQ(run.status, 2);
}

} // namespace
