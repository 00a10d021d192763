// The fake server's script: failures, values and their conditions.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/kit/FakeServer.h"
#include "tests/kit/TestClient.h"

using namespace kit;

namespace {

/// The comment of the printer, or the failing status in its place.
std::wstring CommentOf(const wchar_t* printer) {
    IDriverAutomation* const automation = Bound(printer);
    BSTR text = nullptr;
    const HRESULT status = automation->GetComment(&text);
    automation->Release();
    return FAILED(status) ? L"failed " + std::to_wstring(static_cast<unsigned long>(status)) : Take(text);
}

TEST(FakeServerScript, AnOperationFailsAsToldAndGivesNothing) {
    FakeServer server;
    server.Fail("IDriverAutomation.GetComment", E_ACCESSDENIED);
    IDriverAutomation* const automation = Bound(L"A");
    BSTR text = SysAllocString(L"old");
    const BSTR old = text;
    EXPECT_EQ(automation->GetComment(&text), E_ACCESSDENIED);
    EXPECT_EQ(text, nullptr);
    SysFreeString(old);
    EXPECT_EQ(automation->GetLocation(&text), S_OK);
    Take(text);
    automation->Release();
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
    IDriverAutomation* const automation = ActivateAutomation();
    EXPECT_EQ(automation->PutPrinterName(CallText(L"A")), S_OK);
    EXPECT_EQ(automation->PutPrinterName(CallText(L"B")), E_INVALIDARG);
    automation->Release();
}

TEST(FakeServerScript, NullTextAndNullInterface) {
    FakeServer server;
    server.GiveNull("IDriverAutomation.GetComment");
    server.GiveNull("IDriverAutomation.GetSettings");
    EXPECT_EQ(CommentOf(L"A"), L"(null)");
    IDriverAutomation* const automation = Bound(L"A");
    IDriverSettings* settings = nullptr;
    EXPECT_EQ(automation->GetSettings(&settings), S_OK);
    EXPECT_EQ(settings, nullptr);
    automation->Release();
}

TEST(FakeServerScript, FlagsByCallAndByThePrinterOfTheAction) {
    FakeServer server;
    server.GiveFlag("IDriverActions.GetSupported", VARIANT_FALSE).ForCall(1);
    server.GiveFlag("IDriverActions.GetDisplaysInterface", 7).ForPrinter(L"B");
    IDriverAutomation* const automation = Bound(L"B");
    auto* const actions = Activate<IDriverActions>(__uuidof(DriverActions));
    VARIANT_BOOL flag = VARIANT_TRUE;
    actions->GetSupported(&flag);
    EXPECT_EQ(flag, VARIANT_FALSE);
    actions->GetSupported(&flag);
    EXPECT_EQ(flag, VARIANT_TRUE);
    actions->GetDisplaysInterface(&flag);
    EXPECT_EQ(flag, VARIANT_FALSE);
    VARIANT request{};
    request.vt = VT_DISPATCH;
    request.pdispVal = actions;
    automation->PerformAction(1, request);
    actions->GetDisplaysInterface(&flag);
    EXPECT_EQ(flag, 7);
    actions->Release();
    automation->Release();
}

TEST(FakeServerScript, AnOperationThrowsAsTold) {
    FakeServer server;
    server.Throw("IDriverAutomation.PutComment");
    IDriverAutomation* const automation = Bound(L"A");
    EXPECT_THROW(automation->PutComment(nullptr), std::runtime_error);
    automation->Release();
}

TEST(FakeServerScript, ActivationFailsAtEachStep) {
    const auto statusOf = [](auto&& prepare) {
        FakeServer server;
        prepare(server);
        HRESULT status = S_OK;
        EXPECT_EQ(ActivateAutomation(&status), nullptr);
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
    Bound(L"A")->Release();
    EXPECT_EQ(ActivateAutomation(), nullptr);
    Bound(L"C")->Release();
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
