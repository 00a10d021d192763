// The fake server: activation, journal and defaults, seen by a small client.
#include <objbase.h>

#include <gtest/gtest.h>

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Owners.h"

using namespace kemba;
using namespace kit;

namespace {

TEST(FakeServer, ActivationAndReleaseAreJournaledInOrder) {
    FakeServer server;
    {
        const Apartment apartment;
        ActivateForPrinter(L"Label A");
    }
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
    auto automation = ActivateForPrinter(L"caf\u00E9");
    automation->PutComment(InText(L""));
    automation->PutComment(nullptr);
    automation->SendFile(InText(LR"(c:\x y)"), InText(L""));
    auto actions = Activate<DriverActions, IDriverActions>();
    actions->PutExecute(1);
    actions->PutExecute(VARIANT_TRUE);
    automation->PerformAction(30, OwnedVariant(actions.Get()).Get());
    ComPtr<IDriverSettings> settings;
    automation->GetSettings(settings.Put());
    settings->ExportSettings(InText(L"out.vqs"), OwnedVariant::Omitted().Get());
    settings->ResetSettings(VARIANT{});
    settings.Reset();
    actions.Reset();
    automation.Reset();
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
    auto first = ActivateForPrinter(L"A");
    auto version = Activate<VersionInformation, IVersionInformation>();
    auto second = ActivateForPrinter(L"B");
    ComPtr<IPrinterQueue> queue;
    second->GetPrinterQueue(queue.Put());
    queue->Purge();
    queue.Reset();
    second.Reset();
    version.Reset();
    first.Reset();
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
    auto automation = ActivateForPrinter(L"Label A");
    EXPECT_STREQ(CallForText(automation, &IDriverAutomation::GetComment).Wide(), L"Comment of Label A");
    auto information = CallForObject(automation, &IDriverAutomation::GetPrinterInformation);
    EXPECT_STREQ(CallForText(information, &IPrinterInformation::GetStatus).Wide(), L"Status of Label A");
    information.Reset();
    automation.Reset();
    auto version = Activate<VersionInformation, IVersionInformation>();
    EXPECT_STREQ(CallForText(version, &IVersionInformation::GetVersion).Wide(), L"Version");
    version.Reset();
    auto actions = Activate<DriverActions, IDriverActions>();
    VARIANT_BOOL flag = 0;
    EXPECT_EQ(actions->GetSupported(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_TRUE);
    EXPECT_EQ(actions->GetDisplaysInterface(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_FALSE);
    actions.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServer, ReservedPlacesAndLateBindingAreRefusedButJournaled) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    EXPECT_EQ(automation->Reserved9(), E_NOTIMPL);
    EXPECT_EQ(automation->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              E_NOTIMPL);
    const Lines calls = server.Calls();
    EXPECT_EQ(Lines(calls.begin() + 1, calls.end()),
              (Lines{"DriverAutomation#1.Reserved9()", "DriverAutomation#1.Invoke()"}));
}

TEST(FakeServer, NothingIsRegisteredAfterwards) {
    const Apartment apartment;
    {
        const FakeServer server;
    }
    ComPtr<IUnknown> none;
    EXPECT_EQ(CoGetClassObject(__uuidof(DriverAutomation), CLSCTX_INPROC_SERVER, nullptr, __uuidof(IUnknown),
                               reinterpret_cast<void**>(none.Put())),
              REGDB_E_CLASSNOTREG);
}

} // namespace
