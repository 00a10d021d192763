// The fake server's script: failures, values and their conditions.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/ServerState.h"

using namespace kemba;
using namespace kit;

namespace {

/// The comment of the printer, or the failing status in its place.
std::wstring CommentOf(const wchar_t* printer) {
    std::wstring text;
    const HRESULT status = ReadText(*ActivateForPrinter(printer), &IDriverAutomation::GetComment, text);
    return FAILED(status) ? L"failed " + std::to_wstring(static_cast<unsigned long>(status)) : text;
}

/// How an activation fails, or S_OK; an object that lacks the interface gives no pointer.
HRESULT ActivationStatus() {
    try {
        return Activate<DriverAutomation, IDriverAutomation>() ? S_OK : E_NOINTERFACE;
    } catch (const kemba::ComError& error) {
        return error.Status();
    }
}

TEST(FakeServerScript, AnOperationFailsAsToldAndGivesNothing) {
    FakeServer server;
    server.Fail("IDriverAutomation.GetComment", E_ACCESSDENIED);
    auto automation = ActivateForPrinter(L"A");
    const InText old(L"old");
    BSTR text = old;
    EXPECT_EQ(automation->GetComment(&text), E_ACCESSDENIED);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(automation->GetLocation(OwnedBstr().Put()), S_OK);
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerScript, ConditionsNarrowARule) {
    FakeServer server;
    server.GiveText("IDriverAutomation.GetComment", L"all");
    server.GiveText("IDriverAutomation.GetComment", L"only B").ForPrinter(L"B");
    server.GiveText("IDriverAutomation.GetComment", L"third").ForObject(3);
    EXPECT_EQ(CommentOf(L"A"), L"all");
    EXPECT_EQ(CommentOf(L"B"), L"only B");
    EXPECT_EQ(CommentOf(L"B"), L"third");
    EXPECT_EQ(CommentOf(L"C"), L"all");
}

TEST(FakeServerScript, BindingCanFailForOnePrinter) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutPrinterName", E_INVALIDARG).ForPrinter(L"B");
    const auto automation = Activate<DriverAutomation, IDriverAutomation>();
    EXPECT_EQ(automation->PutPrinterName(InText(L"A")), S_OK);
    EXPECT_EQ(automation->PutPrinterName(InText(L"B")), E_INVALIDARG);
}

TEST(FakeServerScript, NullTextAndNullInterface) {
    FakeServer server;
    server.GiveNull("IDriverAutomation.GetComment");
    server.GiveNull("IDriverAutomation.GetSettings");
    EXPECT_EQ(CommentOf(L"A"), L"(null)");
    auto automation = ActivateForPrinter(L"A");
    ComPtr<IDriverSettings> settings;
    EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK);
    EXPECT_FALSE(settings);
}

TEST(FakeServerScript, FlagsByCallAndByThePrinterOfTheAction) {
    FakeServer server;
    server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE).ForCall(1);
    server.GiveFlag("IDriverActions.GetDisplaysInterface", 7).ForPrinter(L"B");
    auto automation = ActivateForPrinter(L"B");
    auto actions = Activate<DriverActions, IDriverActions>();
    VARIANT_BOOL flag = VARIANT_TRUE;
    actions->GetSupported(&flag);
    EXPECT_EQ(flag, VARIANT_FALSE);
    actions->GetSupported(&flag);
    EXPECT_EQ(flag, VARIANT_TRUE);
    actions->GetDisplaysInterface(&flag);
    EXPECT_EQ(flag, VARIANT_FALSE);
    automation->PerformAction(1, OwnedVariant(actions.Get()).Get());
    actions->GetDisplaysInterface(&flag);
    EXPECT_EQ(flag, 7);
}

TEST(FakeServerScript, AnOperationThrowsAsTold) {
    FakeServer server;
    server.Throw("IDriverAutomation.PutComment");
    auto automation = ActivateForPrinter(L"A");
    EXPECT_THROW(automation->PutComment(nullptr), std::runtime_error);
}

TEST(FakeServerScript, ActivationFailsAtEachStep) {
    const auto statusOf = [](auto&& prepare) {
        FakeServer server;
        prepare(server);
        const HRESULT status = ActivationStatus();
        EXPECT_EQ(server.Faults(), Lines{});
        return status;
    };
    constexpr FakeClass kClass = FakeClass::DriverAutomation;
    EXPECT_EQ(statusOf([](auto& server) { server.Unregister(kClass); }), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(statusOf([](auto& server) { server.FailActivation(kClass, E_OUTOFMEMORY); }), E_OUTOFMEMORY);
    EXPECT_EQ(statusOf([](auto& server) { server.FailRun(kClass, E_ACCESSDENIED); }), E_ACCESSDENIED);
    EXPECT_EQ(statusOf([](auto& server) { server.LackInterface(kClass); }), E_NOINTERFACE);
}

TEST(FakeServerScript, ActivationCanFailForTheSecondObject) {
    FakeServer server;
    server.FailActivation(FakeClass::DriverAutomation, E_FAIL).ForObject(2);
    ActivateForPrinter(L"A");
    EXPECT_EQ(ActivationStatus(), E_FAIL);
    ActivateForPrinter(L"C");
    EXPECT_EQ(server.Calls(), (Lines{"DriverAutomation#1.PutPrinterName(\"A\")",
                                     "DriverAutomation#3.PutPrinterName(\"C\")"}));
}

TEST(FakeServerScript, ATypoFailsTheTest) {
    FakeServer server;
    EXPECT_NONFATAL_FAILURE(server.Fail("IDriverAutomation.GetComent", E_FAIL),
                            "no operation of the contract");
    EXPECT_NONFATAL_FAILURE(server.GiveText("IPrinterQueue.Purge", L"x"), "gives nothing of that kind");
    EXPECT_NONFATAL_FAILURE(server.GiveFlag("IDriverAutomation.GetComment", 1), "gives nothing of that kind");
    EXPECT_NONFATAL_FAILURE(server.GiveNull("IDriverActions.GetSupported"), "gives nothing of that kind");
    EXPECT_NONFATAL_FAILURE(server.SupportErrorInfo("IPrintQueue", ErrorInfoSupport::No), "no interface");
}

} // namespace
