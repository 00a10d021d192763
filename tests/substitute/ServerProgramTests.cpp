// The built server program as its clients meet it: in a process of its own, through its registration.
#include <windows.h>

#include <DriverAutomation.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "ObjectFixture.h"
#include "ServerProgram.h"
#include "demo/WinePrinters.h"

namespace {

using namespace kemba::substitute;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A client's apartment; kemba's own is single-threaded.
class ServerProgramTest : public testing::Test {
  protected:
    ServerProgramTest() { CoInitialize(nullptr); }
    ~ServerProgramTest() override { CoUninitialize(); }
};

template<class Interface>
Held<Interface> Activate(REFCLSID classId) {
    void* object = nullptr;
    const HRESULT status =
        CoCreateInstance(classId, nullptr, CLSCTX_LOCAL_SERVER, __uuidof(Interface), &object);
    EXPECT_EQ(status, S_OK);
    return Held<Interface>(static_cast<Interface*>(object));
}

void ExpectComment(const demo::Printer& printer, const std::wstring& comment) {
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), S_OK);
    EXPECT_EQ(text, comment);
}

TEST_F(ServerProgramTest, ReadsAPrinterForAClient) {
    const demo::Printer printer({.comment = L"far away \x65E5", .location = L"", .shareName = L""});
    ExpectComment(printer, L"far away \x65E5");
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    IPrinterInformation* made = nullptr;
    ASSERT_EQ(automation->GetPrinterInformation(&made), S_OK);
    const Held<IPrinterInformation> information(made);
    std::wstring status;
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, status), S_OK);
    EXPECT_EQ(status, L"Ready");
}

TEST_F(ServerProgramTest, StatusesOfFailuresReachTheClient) {
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    EXPECT_EQ(automation->PutPrinterName(InText(L"No such printer")),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    std::wstring text;
    EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), E_UNEXPECTED);
    EXPECT_EQ(automation->Reserved9(), E_NOTIMPL);
}

TEST_F(ServerProgramTest, EveryClassIsServed) {
    EXPECT_TRUE(Activate<IDriverActions>(__uuidof(DriverActions)));
    const auto version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    ASSERT_TRUE(version);
    std::wstring text;
    EXPECT_EQ(ReadText(*version, &IVersionInformation::GetVersion, text), S_OK);
    EXPECT_EQ(text, L"1.0.0");
}

TEST_F(ServerProgramTest, ServesTwoClientsAtOnce) {
    const demo::Printer first({.comment = L"one", .location = L"", .shareName = L""});
    const demo::Printer second({.comment = L"two", .location = L"", .shareName = L""});
    const auto client = [](const demo::Printer& printer, const std::wstring& comment) {
        CoInitialize(nullptr);
        for (int round = 0; round < 20; ++round) {
            ExpectComment(printer, comment);
        }
        CoUninitialize();
    };
    std::thread other(client, std::cref(second), L"two");
    client(first, L"one");
    other.join();
}

TEST_F(ServerProgramTest, WordsThatItDoesNotKnowGetTheUsageText) {
    std::string errors;
    EXPECT_EQ(RunServerProgram(L"/help", &errors), 2);
    EXPECT_EQ(errors.find("usage: kemba-dal /regserver [/user] "), 0u);
    EXPECT_EQ(RunServerProgram(L"", &errors), 2);
}

/// Run while no other client is there.
class ServerLifetimeTest : public ServerProgramTest {
  protected:
    static void WaitForNoServer() {
        for (const auto begin = Clock::now(); !RunningServers().empty() && Clock::now() - begin < 30s;) {
            std::this_thread::sleep_for(100ms);
        }
    }
};

TEST_F(ServerLifetimeTest, TheProcessStartsForTheFirstClientAndGoesSomeSecondsAfterTheLast) {
    WaitForNoServer();
    ASSERT_EQ(RunningServers().size(), 0u);
    auto version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    auto actions = Activate<IDriverActions>(__uuidof(DriverActions));
    ASSERT_EQ(RunningServers().size(), 1u); // one process serves all classes
    version.reset();
    std::this_thread::sleep_for(6s); // longer than the grace time, with one object left
    EXPECT_EQ(RunningServers().size(), 1u);
    actions.reset();
    const auto released = Clock::now();
    std::this_thread::sleep_for(3s);
    EXPECT_EQ(RunningServers().size(), 1u);
    WaitForNoServer();
    EXPECT_EQ(RunningServers().size(), 0u);
    EXPECT_LT(Clock::now() - released, 20s);
}

TEST_F(ServerLifetimeTest, AClientOfANewServerFollowsOneThatHasEnded) {
    WaitForNoServer();
    EXPECT_TRUE(Activate<IVersionInformation>(__uuidof(VersionInformation)));
    WaitForNoServer();
    EXPECT_TRUE(Activate<IVersionInformation>(__uuidof(VersionInformation)));
}

} // namespace
