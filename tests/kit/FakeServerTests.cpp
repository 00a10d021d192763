// The fake server: activation, journal and defaults, seen by a small client.
#include <gtest/gtest.h>

#include "tests/kit/FakeServer.h"
#include "tests/kit/TestClient.h"

using namespace kit;

namespace {

TEST(FakeServer, ActivationAndReleaseAreJournaledInOrder) {
    FakeServer server;
    CoInitialize(nullptr);
    Bound(L"Label A")->Release();
    CoUninitialize();
    EXPECT_EQ(
        server.Journal(),
        (Lines{"CoInitialize(2)", "new DriverAutomation#1", "DriverAutomation#1.Run()",
               "DriverAutomation#1.QueryInterface(IDriverAutomation)",
               "DriverAutomation#1.PutPrinterName(\"Label A\")", "~DriverAutomation#1", "CoUninitialize()"}));
    EXPECT_EQ(server.Calls(), Lines{"DriverAutomation#1.PutPrinterName(\"Label A\")"});
    EXPECT_EQ(server.Faults(), Lines{});
    server.ClearJournal();
    EXPECT_EQ(server.Journal(), Lines{});
}

TEST(FakeServer, ArgumentsAreShownAsTheyCame) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"caf\u00E9");
    automation->PutComment(CallText(L""));
    automation->PutComment(nullptr);
    automation->SendFile(CallText(LR"(c:\x y)"), CallText(L""));
    auto* const actions = Activate<IDriverActions>(__uuidof(DriverActions));
    actions->PutExecute(1);
    actions->PutExecute(VARIANT_TRUE);
    VARIANT request{};
    request.vt = VT_DISPATCH;
    request.pdispVal = actions;
    automation->PerformAction(30, request);
    IDriverSettings* settings = nullptr;
    automation->GetSettings(&settings);
    VARIANT omitted{};
    omitted.vt = VT_ERROR;
    omitted.scode = DISP_E_PARAMNOTFOUND;
    settings->ExportSettings(CallText(L"out.vqs"), omitted);
    settings->ResetSettings(VARIANT{});
    settings->Release();
    actions->Release();
    automation->Release();
    EXPECT_EQ(
        server.Calls(),
        (Lines{"DriverAutomation#1.PutPrinterName(\"caf\xC3\xA9\")", "DriverAutomation#1.PutComment(\"\")",
               "DriverAutomation#1.PutComment(null)", R"(DriverAutomation#1.SendFile("c:\x y", ""))",
               "DriverActions#1.PutExecute(1)", "DriverActions#1.PutExecute(-1)",
               "DriverAutomation#1.PerformAction(30, VT_DISPATCH:DriverActions#1)",
               "DriverAutomation#1.GetSettings()",
               "DriverSettings#1.ExportSettings(\"out.vqs\", VT_ERROR:0x80020004)",
               "DriverSettings#1.ResetSettings(VT_EMPTY)"}));
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServer, ObjectsAreNumberedByClass) {
    FakeServer server;
    IDriverAutomation* const first = Bound(L"A");
    auto* const version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    IDriverAutomation* const second = Bound(L"B");
    IPrinterQueue* queue = nullptr;
    second->GetPrinterQueue(&queue);
    queue->Purge();
    queue->Release();
    second->Release();
    version->Release();
    first->Release();
    EXPECT_EQ(server.Calls(),
              (Lines{"DriverAutomation#1.PutPrinterName(\"A\")", "DriverAutomation#2.PutPrinterName(\"B\")",
                     "DriverAutomation#2.GetPrinterQueue()", "PrinterQueue#1.Purge()"}));
    const Lines journal = server.Journal();
    EXPECT_EQ(
        Lines(journal.end() - 4, journal.end()),
        (Lines{"~PrinterQueue#1", "~DriverAutomation#2", "~VersionInformation#1", "~DriverAutomation#1"}));
}

TEST(FakeServer, WithoutAScriptEverythingSucceedsWithTellingValues) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"Label A");
    BSTR text = nullptr;
    EXPECT_EQ(automation->GetComment(&text), S_OK);
    EXPECT_EQ(Take(text), L"Comment of Label A");
    IPrinterInformation* information = nullptr;
    EXPECT_EQ(automation->GetPrinterInformation(&information), S_OK);
    EXPECT_EQ(information->GetStatus(&text), S_OK);
    EXPECT_EQ(Take(text), L"Status of Label A");
    information->Release();
    automation->Release();
    auto* const version = Activate<IVersionInformation>(__uuidof(VersionInformation));
    EXPECT_EQ(version->GetVersion(&text), S_OK);
    EXPECT_EQ(Take(text), L"Version");
    version->Release();
    auto* const actions = Activate<IDriverActions>(__uuidof(DriverActions));
    VARIANT_BOOL flag = 0;
    EXPECT_EQ(actions->GetSupported(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_TRUE);
    EXPECT_EQ(actions->GetDisplaysInterface(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_FALSE);
    actions->Release();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServer, ReservedPlacesAndLateBindingAreRefusedButJournaled) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    EXPECT_EQ(automation->Reserved9(), E_NOTIMPL);
    EXPECT_EQ(automation->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              E_NOTIMPL);
    automation->Release();
    const Lines calls = server.Calls();
    EXPECT_EQ(Lines(calls.begin() + 1, calls.end()),
              (Lines{"DriverAutomation#1.Reserved9()", "DriverAutomation#1.Invoke()"}));
}

TEST(FakeServer, NothingIsRegisteredAfterwards) {
    CoInitialize(nullptr);
    {
        const FakeServer server;
    }
    HRESULT status = S_OK;
    EXPECT_EQ(ActivateAutomation(&status), nullptr);
    EXPECT_EQ(status, REGDB_E_CLASSNOTREG);
    CoUninitialize();
}

} // namespace
