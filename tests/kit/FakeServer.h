// A scripted automation server inside the test process, found by an ordinary activation of its classes.
//
//     FakeServer server;
//     server.GiveText("IDriverAutomation.GetComment", L"by the door").ForPrinter(L"Label A");
//     server.Fail("IDriverAutomation.GetComment", E_ACCESSDENIED)
//         .WithInformation(L"Driver", L"Out of paper")
//         .ForPrinter(L"Label B");
//     ... run the program ...
//     EXPECT_EQ(server.Calls(), (Lines{"DriverAutomation#1.PutPrinterName(\"Label A\")",
//                                           "DriverAutomation#1.GetComment()",
//                                           "DriverAutomation#2.PutPrinterName(\"Label B\")",
//                                           "DriverAutomation#2.GetComment()"}));
//     EXPECT_EQ(server.Faults(), Lines{});
//
// Without a script every operation succeeds: a text is the operation's noun and the printer ("Comment of
// Label A", "Version" where no printer is bound), every action is supported and none displays an interface.
#pragma once

#include <windows.h>

#include <array>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/RuntimeWatch.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// Registers the three classes for as long as it lives, for the thread that made it; one at a time.
class FakeServer {
  public:
    /// Initialises the component runtime; throws std::runtime_error when a class cannot be registered.
    FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;
    ~FakeServer();

    // The script. Operations are named as in AllOperations; an unknown name, or one that gives nothing of the
    // kind, fails the test. The rule returned can be narrowed, later rules win. See Rule for the conditions.

    /// The operation returns the status, a failing one with nothing in its out arguments.
    Rule& Fail(std::string_view operation, HRESULT status);
    /// The operation throws a C++ exception.
    Rule& Throw(std::string_view operation);
    Rule& GiveText(std::string_view operation, std::wstring text);
    /// A null text or a null interface pointer, with success.
    Rule& GiveNull(std::string_view operation);
    /// The flag's raw value: clients must take any but 0 for true.
    Rule& GiveFlag(std::string_view operation, VARIANT_BOOL flag);
    /// The operation does some work of the test's as well.
    Rule& Do(std::string_view operation, std::function<void()> work);
    /// The class's factory fails to make the object.
    Rule& FailActivation(FakeClass which, HRESULT status);
    /// The object made cannot be put into its running state.
    Rule& FailRun(FakeClass which, HRESULT status);
    /// The object lacks the interface that clients ask for.
    Rule& LackInterface(FakeClass which);
    /// The class is not registered from now on.
    void Unregister(FakeClass which);
    /// For all objects of the server.
    void SupportErrorInfo(ErrorInfoSupport support);
    /// For the objects with that interface, "IPrinterQueue" for one.
    void SupportErrorInfo(std::string_view interfaceName, ErrorInfoSupport support);

    /// The calls of operations so far; see Journal for the form.
    Lines Calls() const { return m_state->journal.Calls(); }
    /// The calls, and the life of the objects and of the component runtime.
    Lines Journal() const { return m_state->journal.Lines(); }
    void ClearJournal() { m_state->journal.Clear(); }
    /// Hands each further call to the follower as well, before it is done: for programs that may not end
    /// well.
    void FollowCalls(std::function<void(const std::string&)> follower) {
        m_state->journal.Follow(std::move(follower));
    }

    /// What is wrong after a run, a readable line each: objects and error information not released, factories
    /// locked, texts not freed, an unbalanced initialisation of the runtime, arguments that are no BSTRs.
    /// Empties the thread's error information.
    Lines Faults();

  private:
    /// Checks the name and what the operation gives; Gives::Nothing stands for any.
    Rule& AddRule(std::string_view operation, std::initializer_list<Gives> kinds, Answer answer);

    std::shared_ptr<ServerState> m_state;
    RuntimeWatch m_runtime;
    std::array<DWORD, kAllClasses.size()> m_registrations{}; // 0: not registered
};

} // namespace kit
