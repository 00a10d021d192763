// The built server program as its clients meet it: in a process of its own, through its registration.
#include <windows.h>
#include <DriverAutomation.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "Version.h"
#include "automation/Owners.h"
#include "demo/Printers.h"
#include "demo/Wine.h"
#include "substitute/base/NumberText.h"
#include "substitute/registration/ServerIdentity.h"
#include "substitute/server/ServingTurn.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/programs/Kemba.h"
#include "tests/programs/ServerProgram.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

/// A client's apartment; kemba's own is single-threaded.
class ServerProgram : public testing::Test {
    const Apartment apartment;
};

template<class Interface>
ComPtr<Interface> Activate(REFCLSID classId) {
    ComPtr<Interface> object;
    EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_LOCAL_SERVER, __uuidof(Interface),
                               reinterpret_cast<void**>(object.Put())),
              S_OK);
    return object;
}

void ExpectComment(const demo::Printer& printer, const std::wstring& comment) {
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), S_OK);
    EXPECT_EQ(text, comment);
}

TEST_F(ServerProgram, ReadsAPrinterForAClient) {
    const demo::Printer printer({.comment = L"far away \x65E5", .location = L"", .shareName = L""});
    ExpectComment(printer, L"far away \x65E5");
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    ComPtr<IPrinterInformation> information;
    ASSERT_EQ(automation->GetPrinterInformation(information.Put()), S_OK);
    std::wstring status;
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, status), S_OK);
    EXPECT_EQ(status, L"Ready");
}

TEST_F(ServerProgram, StatusesOfFailuresReachTheClient) {
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    EXPECT_EQ(automation->PutPrinterName(InText(L"No such printer")),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    std::wstring text;
    EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), E_UNEXPECTED);
    EXPECT_EQ(automation->Reserved9(), E_NOTIMPL);
}

TEST_F(ServerProgram, EveryClassIsServed) {
    EXPECT_TRUE(Activate<IDriverActions>(__uuidof(DriverActions)));
    const auto version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    ASSERT_TRUE(version);
    std::wstring text;
    EXPECT_EQ(ReadText(*version, &IVersionInformation::GetVersion, text), S_OK);
    EXPECT_EQ(text, L"" KEMBA_VERSION_TEXT);
}

TEST_F(ServerProgram, ServesTwoClientsAtOnce) {
    const demo::Printer first({.comment = L"one", .location = L"", .shareName = L""});
    const demo::Printer second({.comment = L"two", .location = L"", .shareName = L""});
    const auto client = [](const demo::Printer& printer, const std::wstring& comment) {
        const Apartment own;
        for (int round = 0; round < 20; ++round) {
            ExpectComment(printer, comment);
        }
    };
    std::thread other(client, std::cref(second), L"two");
    client(first, L"one");
    other.join();
}

TEST_F(ServerProgram, WordsThatItDoesNotKnowGetTheUsageText) {
    const ProcessResult run = RunProgram(L"kemba-dal.exe", {L"/help"});
    EXPECT_EQ(run.status, 2u);
    EXPECT_EQ(run.errors.find("usage: kemba-dal /regserver [/user] "), 0u);
    EXPECT_EQ(RunProgram(L"kemba-dal.exe", {}).status, 2u);
}

TEST_F(ServerProgram, ChangesAPrinterAndSendsAFileForAClient) {
    const PrinterPort port;
    const demo::Printer printer({.port = port.Name()});
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    EXPECT_EQ(automation->PutComment(InText(L"changed")), S_OK);
    ExpectComment(printer, L"changed");
    const TemporaryFile file("label");
    EXPECT_EQ(automation->SendFile(InText(file.Path()), InText(L"")), S_OK);
    EXPECT_EQ(port.Received(5), "label");
    EXPECT_EQ(automation->SendFile(InText(L"C:\\no such file"), InText(L"")),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
}

TEST_F(ServerProgram, TheQueueObjectAndItsAnswerReachTheClient) {
    const demo::Printer printer;
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    ASSERT_TRUE(automation);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    ComPtr<IPrinterQueue> queue;
    ASSERT_EQ(automation->GetPrinterQueue(queue.Put()), S_OK);
    EXPECT_EQ(queue->Pause(), demo::IsWine() ? HRESULT_FROM_WIN32(ERROR_INVALID_LEVEL) : S_OK);
}

TEST_F(ServerProgram, AClientsRequestIsRecognisedInTheServer) {
    // The printer has the name of the sample's profile, which lies beside the server.
    const PrinterPort port;
    const demo::Printer printer(L"escpos-receipt", {.port = port.Name()});
    const auto automation = Activate<IDriverAutomation>(__uuidof(DriverAutomation));
    const auto request = Activate<IDriverActions>(__uuidof(DriverActions));
    ASSERT_TRUE(automation && request);
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    VARIANT argument = {};
    argument.vt = VT_DISPATCH;
    argument.pdispVal = request.Get();
    const auto supported = [&] {
        VARIANT_BOOL value = 42;
        EXPECT_EQ(request->GetSupported(&value), S_OK);
        return value != VARIANT_FALSE;
    };
    EXPECT_EQ(request->PutExecute(1), S_OK);
    EXPECT_EQ(automation->PerformAction(7, argument), S_OK);
    EXPECT_TRUE(supported());
    EXPECT_EQ(port.Received(2), "\x1B@");
    EXPECT_EQ(automation->PerformAction(9, argument), S_OK); // no such entry
    EXPECT_FALSE(supported());
    argument.pdispVal = automation.Get();
    EXPECT_EQ(automation->PerformAction(7, argument), E_INVALIDARG);
}

/// Run while no other client is there.
class ServerLifetime : public ServerProgram {
  protected:
    static bool IsGone() { return RunningServers().empty(); }
    /// False when a server is still there after a time that is long for any machine.
    [[nodiscard]] static bool WaitForNoServer() {
        const auto begin = Clock::now();
        while (!IsGone() && Clock::now() - begin < 1min) {
            std::this_thread::sleep_for(50ms);
        }
        return IsGone();
    }
    /// The one running server, to be waited for; none if there is none or more than one.
    static UniqueHandle OpenServer() {
        const std::vector<DWORD> running = RunningServers();
        return UniqueHandle(running.size() == 1
                                ? OpenProcess(PROCESS_QUERY_INFORMATION | SYNCHRONIZE, FALSE, running.front())
                                : nullptr);
    }
};

TEST_F(ServerLifetime, TheProcessStartsForTheFirstClientAndGoesSomeSecondsAfterTheLast) {
    ASSERT_TRUE(WaitForNoServer());
    auto version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    auto actions = Activate<IDriverActions>(__uuidof(DriverActions));
    const UniqueHandle server = OpenServer(); // one process serves all classes
    ASSERT_TRUE(server);
    version.Reset();
    std::this_thread::sleep_for(6s); // longer than the grace time and what follows it, with one object left
    EXPECT_FALSE(IsGone());

    // A class object neither keeps the process, nor does it bring it down.
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(CoGetClassObject(__uuidof(VersionInformation), CLSCTX_LOCAL_SERVER, nullptr,
                               __uuidof(IClassFactory), reinterpret_cast<void**>(factory.Put())),
              S_OK);
    const auto released = Clock::now();
    actions.Reset();
    ASSERT_EQ(WaitForSingleObject(server.get(), 60'000), WAIT_OBJECT_0);
    EXPECT_GE(Clock::now() - released, 5s);
    DWORD status = STILL_ACTIVE;
    EXPECT_TRUE(GetExitCodeProcess(server.get(), &status));
    EXPECT_EQ(status, 0u);

    ASSERT_TRUE(WaitForNoServer());
    EXPECT_TRUE(Activate<IVersionInformation>(__uuidof(VersionInformation))); // of a server of its own
    void* made = nullptr;
    EXPECT_TRUE(FAILED(factory->CreateInstance(nullptr, __uuidof(IUnknown), &made)));
}

TEST_F(ServerLifetime, AProgramThatFindsAnotherServingWaitsForItsTurn) {
    ASSERT_TRUE(WaitForNoServer());
    ServingTurn turn(ServingTurnName(OwnLogon()));
    ASSERT_TRUE(turn.Take(10s));
    std::atomic<bool> served = false;
    std::thread client([&] {
        const Apartment own;
        EXPECT_TRUE(Activate<IVersionInformation>(__uuidof(VersionInformation)));
        served = true;
    });
    for (int tenths = 0; IsGone() && tenths < 200; ++tenths) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_FALSE(IsGone());
    std::this_thread::sleep_for(3s); // a client looks for the class once a second
    EXPECT_FALSE(served);
    turn.GiveUp();
    client.join();
    EXPECT_TRUE(served);
}

/// A window station of the test's own, which nobody sees, with a desktop.
class HiddenDesktop {
  public:
    HiddenDesktop() {
        const HWINSTA own = GetProcessWindowStation();
        SetProcessWindowStation(m_station);
        m_desktop = CreateDesktopW(L"hidden", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
        SetProcessWindowStation(own);
    }
    HiddenDesktop(const HiddenDesktop&) = delete;
    HiddenDesktop& operator=(const HiddenDesktop&) = delete;
    ~HiddenDesktop() {
        CloseDesktop(m_desktop);
        CloseWindowStation(m_station);
    }
    /// As a start of a program names it.
    std::wstring Name() const {
        wchar_t name[256] = {};
        EXPECT_TRUE(GetUserObjectInformationW(m_station, UOI_NAME, name, sizeof(name), nullptr));
        EXPECT_TRUE(m_desktop);
        return std::wstring(name) + L"\\hidden";
    }

  private:
    const HWINSTA m_station = CreateWindowStationW(nullptr, 0, GENERIC_ALL, nullptr);
    HDESK m_desktop = nullptr;
};

/// The server comes to the desktop of the client that starts it.
TEST_F(ServerLifetime, ShowsNoDialogOnADesktopThatNobodySees) {
    const demo::Printer printer;
    const std::string name = Printed(printer.Name());
    const HiddenDesktop hidden;
    ASSERT_TRUE(WaitForNoServer());
    ProcessOptions options;
    options.desktop = hidden.Name();
    const ProcessResult asked =
        Kemba({L"/p", printer.Name(), L"action", L"-n", L"ConfigurePrinter"}, options);
    EXPECT_EQ(asked.output, Framed("Action", {name + ":", "Action 'ConfigurePrinter' is not supported."}));
    const ProcessResult executed = Kemba({L"/p", printer.Name(), L"action", L"ConfigurePrinter"}, options);
    EXPECT_FALSE(executed.timedOut);
    EXPECT_EQ(executed.output, Framed("Action", {name + ":", ""}));
    ASSERT_TRUE(WaitForNoServer()); // others come with a desktop
}

TEST_F(ServerLifetime, RefusesToServeWhenTheApplicationIsToRunAsAnAccount) {
    const RegistryPreset account(HKEY_LOCAL_MACHINE, L"Software\\Classes\\AppID\\" + Braced(kApplication),
                                 L"RunAs");
    account.Set(RegistryData::OfText(L"Interactive User"));
    const ProcessResult run = RunProgram(L"kemba-dal.exe", {L"/automation"});
    EXPECT_EQ(run.status, 1u);
    EXPECT_NE(run.errors.find("the application is set to run as \"Interactive User\""), std::string::npos);
}

} // namespace
