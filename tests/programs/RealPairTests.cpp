// kemba.exe against kemba-dal.exe on the real spooler, through the real registration.
#include <gtest/gtest.h>

#include <string>

#include "Version.h"
#include "demo/Printers.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

struct RealPair : testing::Test {
    ProcessResult Get(const wchar_t* field) { return Kemba({L"/p", printer.Name(), L"get", field}); }
    /// What `get` prints for a value of the printer.
    std::string Line(const std::string& value) const { return Printed(printer.Name()) + ": " + value; }

    const demo::Printer printer{{.port = L"LPT1:",
                                 .comment = L"by the door, 50% %1",
                                 .location = L"Hall 3/b",
                                 .shareName = L"dock",
                                 .attributes = 0}};
};

TEST_F(RealPair, GetReadsEveryFieldFromTheSpooler) {
    EXPECT_EQ(Get(L"comment").output, Framed("Get", {Line("by the door, 50% %1")}));
    EXPECT_EQ(Get(L"location").output, Framed("Get", {Line("Hall 3/b")}));
    EXPECT_EQ(Get(L"sharename").output, Framed("Get", {Line("dock")}));
    EXPECT_EQ(Get(L"portname").output, Framed("Get", {Line("LPT1:")}));
    const ProcessResult status = Get(L"status");
    EXPECT_EQ(status.output, Framed("Get", {Line("Ready")}));
    EXPECT_EQ(status.errors, "");
    EXPECT_EQ(status.status, 0U);
}

TEST_F(RealPair, EveryPrinterIsServedInTurn) {
    const ProcessResult run =
        Kemba({L"/p", printer.Name(), L"/p", L"Nobody", L"/p", printer.Name(), L"get", L"Comment"});
    const std::string line = Line("by the door, 50% %1");
    EXPECT_EQ(run.output, "The printer 'Nobody' is not found.\r\n" + Framed("Get", {line, line}));
    EXPECT_EQ(run.status, 0U);
}

TEST_F(RealPair, AnUnknownFieldIsInvalid) {
    const ProcessResult run = Get(L"stat");
    EXPECT_EQ(run.output, Framed("Get", {"Argument 'stat' is invalid."}));
    EXPECT_EQ(run.status, 0U);
}

TEST_F(RealPair, QuietModeAsksTheServerAndPrintsNothing) {
    const ProcessResult run = Kemba({L"/q", L"/p", printer.Name(), L"get", L"comment"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 0U);
}

TEST_F(RealPair, TheServersVersionIsTheProducts) {
    const ProcessResult run = Kemba({L"version", L"interface"});
    EXPECT_EQ(run.output,
              "DAL: " KEMBA_VERSION_TEXT " [kemba-dal, release build, on the Windows print spooler]\r\n");
    EXPECT_EQ(run.status, 0U);
}

} // namespace
