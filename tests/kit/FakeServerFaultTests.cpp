// The fake server's error information, and its verdict on clients that leak.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ServerState.h"

using namespace kemba;
using namespace kit;

namespace {

/// "source/description" of the thread's error information; "none" without any.
std::wstring TakeErrorInformation() {
    ComPtr<IErrorInfo> information;
    if (GetErrorInfo(0, information.Put()) != S_OK) {
        return L"none";
    }
    std::wstring source;
    std::wstring description;
    const HRESULT sourceStatus = ReadText(*information, &IErrorInfo::GetSource, source);
    const HRESULT descriptionStatus = ReadText(*information, &IErrorInfo::GetDescription, description);
    return (FAILED(sourceStatus) ? L"failed" : source) + L"/" +
           (FAILED(descriptionStatus) ? L"failed" : description);
}

/// How the object answers for its own interface; E_NOINTERFACE without the interface to ask.
HRESULT AskSupport(const ComPtr<IDriverAutomation>& automation, REFIID id) {
    const auto support = Query<ISupportErrorInfo>(*automation);
    return support ? support->InterfaceSupportsErrorInfo(id) : E_NOINTERFACE;
}

TEST(FakeServerErrorInformation, IsThereWhenTheScriptGivesIt) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    server.Fail("IDriverAutomation.PutLocation", E_FAIL).WithInformation(std::nullopt, L"");
    auto automation = ActivateForPrinter(L"A");
    automation->PutComment(nullptr);
    EXPECT_EQ(TakeErrorInformation(), L"Driver/Out of paper");
    automation->PutLocation(nullptr);
    EXPECT_EQ(TakeErrorInformation(), L"failed/");
    automation->PutComment(nullptr);
    automation->PutShareName(nullptr); // a call without any takes away what is left of the one before
    EXPECT_EQ(TakeErrorInformation(), L"none");
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerErrorInformation, SupportIsAnsweredAsToldForTheObjectsInterfaceOnly) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_OK);
    EXPECT_EQ(AskSupport(automation, __uuidof(IPrinterQueue)), S_FALSE);
    server.SupportErrorInfo("IPrinterQueue", ErrorInfoSupport::Absent);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_OK);
    server.SupportErrorInfo(ErrorInfoSupport::No);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_FALSE);
    server.SupportErrorInfo("IDriverAutomation", ErrorInfoSupport::Absent);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), E_NOINTERFACE);
}

TEST(FakeServerFaults, ALeakedObjectIsNamed) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    ComPtr<IPrinterQueue> queue;
    automation->GetPrinterQueue(queue.Put());
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{"not released: PrinterQueue#1"});
    queue.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALeakedTextOfTheServerIsNamed) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    OwnedBstr text;
    automation->GetComment(text.Put());
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{"not freed: text of DriverAutomation#1.GetComment"});
    text = {};
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALeakedArgumentIsNamed) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    OwnedBstr text = OwnedBstr::Copy(L"x");
    automation->PutComment(text.Get());
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{"not freed: text of DriverAutomation#1.PutComment (argument)"});
    text = {};
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ATextThatIsFreedTwiceIsNamed) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    {
        OwnedBstr text;
        automation->GetComment(text.Put());
        SysFreeString(text.Get()); // and its owner frees it once more
    }
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{"freed twice: text of DriverAutomation#1.GetComment"});
}

TEST(FakeServerFaults, AUseAfterTheLastReleaseIsNamed) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    IDriverAutomation* const released = automation.Get();
    automation.Reset();
    released->PutComment(nullptr);
    ReferencesTo(*released);
    EXPECT_EQ(server.Faults(), (Lines{"used after its last release: DriverAutomation#1.PutComment",
                                      "used after its last release: DriverAutomation#1.AddRef",
                                      "used after its last release: DriverAutomation#1.Release"}));
}

TEST(FakeServerFaults, AnArgumentThatIsNoBstrIsReported) {
    FakeServer server;
    auto automation = ActivateForPrinter(L"A");
    wchar_t text[] = L"array";
    automation->PutComment(text);
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{"DriverAutomation#1.PutComment: the argument is no BSTR"});
    EXPECT_EQ(server.Calls().back(), "DriverAutomation#1.PutComment(not a BSTR)");
}

TEST(FakeServerFaults, LeakedErrorInformationAndItsTextsAreNamed) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    auto automation = ActivateForPrinter(L"A");
    automation->PutComment(nullptr);
    automation.Reset();
    ComPtr<IErrorInfo> information;
    GetErrorInfo(0, information.Put());
    OwnedBstr source;
    information->GetSource(source.Put());
    EXPECT_EQ(server.Faults(),
              (Lines{"not released: ErrorInformation#1", "not freed: text of ErrorInformation#1.GetSource"}));
    information.Reset();
    source = {};
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ErrorInformationThatNobodyFetchedIsNoFault) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    auto automation = ActivateForPrinter(L"A");
    automation->PutComment(nullptr);
    automation.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALockedFactoryIsReported) {
    FakeServer server;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(CoGetClassObject(__uuidof(DriverActions), CLSCTX_INPROC_SERVER, nullptr,
                               __uuidof(IClassFactory), reinterpret_cast<void**>(factory.Put())),
              S_OK);
    factory->LockServer(TRUE);
    EXPECT_EQ(server.Faults(), Lines{"locks of class factories: 1"});
    factory->LockServer(FALSE);
    factory.Reset();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, AnUnbalancedInitialisationIsReported) {
    FakeServer server;
    {
        const Apartment again;
        EXPECT_EQ(server.Faults(), Lines{"initialisations of the runtime not undone: 1"});
    }
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, WhatOneServerSawLeakingDoesNotCountForTheNext) {
    OwnedBstr text;
    {
        FakeServer server;
        ActivateForPrinter(L"A")->GetComment(text.Put());
    }
    FakeServer next;
    EXPECT_EQ(next.Faults(), Lines{});
}

TEST(FakeServerFaults, AnObjectMayOutliveTheServer) {
    ComPtr<IDriverAutomation> automation;
    {
        FakeServer server;
        automation = ActivateForPrinter(L"A");
    }
    FakeServer next;
    EXPECT_EQ(ReferencesTo(*automation), 1U);
    automation.Reset();
    EXPECT_EQ(next.Journal(), Lines{});
}

} // namespace
