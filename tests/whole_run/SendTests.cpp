// send: which files count as there, what is passed on, and failures.
#include <string>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class Send : public WholeRunTest {
  protected:
    static std::string SentTo(const std::string& name) { return "File sent to '" + name + "'."; }

    /// A run over both printers that finds no file.
    void ExpectNoFile(const std::wstring& path) {
        server.ClearJournal();
        const auto run = RunOnBoth({L"send", path});
        EXPECT_EQ(run.output, Framed("Send", {"File does not exist."})) << Narrow(path);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
    }

    const TemporaryFile file{"data"};
};

TEST_F(Send, PassesThePathAndAnEmptyTextForEveryPrinter) {
    const auto run = RunOnBoth({L"send", file.Path(), L"ignored"});
    EXPECT_EQ(run.output, Framed("Send", {SentTo(firstName), SentTo(secondName)}));
    EXPECT_EQ(run.status, 0);
    const std::string call = "SendFile(\"" + Narrow(file.Path()) + "\", \"\")";
    EXPECT_EQ(server.Journal(),
              (Lines{"CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
                     "DriverAutomation#1.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#1.PutPrinterName(\"" + firstName + "\")", "DriverAutomation#1." + call,
                     "~DriverAutomation#1", "new DriverAutomation#2", "DriverAutomation#2.Run()",
                     "DriverAutomation#2.QueryInterface(IDriverAutomation)",
                     "DriverAutomation#2.PutPrinterName(\"" + secondName + "\")",
                     "DriverAutomation#2." + call, "~DriverAutomation#2", "CoUninitialize()"}));
    EXPECT_EQ(file.Read(), "data");
}

TEST_F(Send, PassesARelativePathAsTyped) {
    // The tests run where the sources are.
    for (const wchar_t* const path : {L"tests/whole_run/SendTests.cpp", L".\\tests\\..\\CMakeLists.txt"}) {
        server.ClearJournal();
        EXPECT_EQ(RunOnFirst({L"send", path}).output, Framed("Send", {SentTo(firstName)}));
        const std::string call = server.Calls().at(1);
        EXPECT_EQ(call.substr(call.find('.') + 1), "SendFile(\"" + Narrow(path) + "\", \"\")");
    }
}

TEST_F(Send, AMissingFileIsReportedOnceBeforeAnyObjectIsMade) {
    ExpectNoFile(L"no such file.prn");
    ExpectNoFile(L"no such folder\\x.prn");
    ExpectNoFile(L"");
    ExpectNoFile(file.Path() + L"x");
    ExpectNoFile(L"%1");
    ExpectNoFile(L"a*?.prn");
}

TEST_F(Send, AFolderIsNoFile) {
    ExpectNoFile(L"tests");
    ExpectNoFile(L".");
    ExpectNoFile(L"C:\\");
}

TEST_F(Send, AFileLockedAgainstReadingIsNoFile) {
    {
        const UniqueHandle user = OpenExisting(file.Path(), GENERIC_READ, 0);
        EXPECT_TRUE(user);
        ExpectNoFile(file.Path());
    }
    {
        const UniqueHandle user = OpenExisting(file.Path(), GENERIC_WRITE, FILE_SHARE_WRITE);
        EXPECT_TRUE(user);
        ExpectNoFile(file.Path());
    }
    EXPECT_EQ(RunOnFirst({L"send", file.Path()}).output, Framed("Send", {SentTo(firstName)}));
}

TEST_F(Send, AFileThatOthersReadAndWriteIsThere) {
    const UniqueHandle user =
        OpenExisting(file.Path(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_TRUE(user);
    EXPECT_EQ(RunOnFirst({L"send", file.Path()}).output, Framed("Send", {SentTo(firstName)}));
}

TEST_F(Send, TheFileIsClosedBeforeTheServerSeesIt) {
    bool free = false;
    server.Do("IDriverAutomation.SendFile",
              [&] { free = OpenExisting(file.Path(), GENERIC_READ | GENERIC_WRITE, 0) != nullptr; });
    RunOnFirst({L"send", file.Path()});
    EXPECT_TRUE(free);
}

TEST_F(Send, AFileThatVanishesBetweenTwoPrintersStopsAtTheSecond) {
    server.Do("IDriverAutomation.SendFile", [&] { DeleteFileW(file.Path().c_str()); });
    const auto run = RunOnBoth({L"send", file.Path()});
    EXPECT_EQ(run.output, Framed("Send", {SentTo(firstName), "File does not exist."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Calls().size(), 2U);
}

TEST_F(Send, WithoutAFileStopsBeforeAnyObjectIsMade) {
    const auto run = RunOnBoth({L"send"});
    EXPECT_EQ(run.output, Framed("Send", {"Incorrect number of arguments."}));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

} // namespace
