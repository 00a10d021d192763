// The fake server's error information, and its verdict on clients that leak.
#include <gtest/gtest.h>

#include "tests/kit/FakeServer.h"
#include "tests/kit/TestClient.h"

using namespace kit;

namespace {

/// "source/description" of the thread's error information; "none" without any.
std::wstring TakeErrorInformation() {
    IErrorInfo* information = nullptr;
    if (GetErrorInfo(0, &information) != S_OK) {
        return L"none";
    }
    BSTR source = nullptr;
    BSTR description = nullptr;
    const HRESULT sourceStatus = information->GetSource(&source);
    const HRESULT descriptionStatus = information->GetDescription(&description);
    information->Release();
    return (FAILED(sourceStatus) ? L"failed" : Take(source)) + L"/" +
           (FAILED(descriptionStatus) ? L"failed" : Take(description));
}

/// How the object answers for its own interface; E_NOINTERFACE without the interface to ask.
HRESULT AskSupport(IDriverAutomation* automation, REFIID id) {
    ISupportErrorInfo* support = nullptr;
    if (FAILED(automation->QueryInterface(__uuidof(ISupportErrorInfo), reinterpret_cast<void**>(&support)))) {
        return E_NOINTERFACE;
    }
    const HRESULT answer = support->InterfaceSupportsErrorInfo(id);
    support->Release();
    return answer;
}

TEST(FakeServerErrorInformation, IsThereWhenTheScriptGivesIt) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    server.Fail("IDriverAutomation.PutLocation", E_FAIL).WithInformation(std::nullopt, L"");
    IDriverAutomation* const automation = Bound(L"A");
    automation->PutComment(nullptr);
    EXPECT_EQ(TakeErrorInformation(), L"Driver/Out of paper");
    automation->PutLocation(nullptr);
    EXPECT_EQ(TakeErrorInformation(), L"failed/");
    automation->PutComment(nullptr);
    automation->PutShareName(nullptr); // a call without any takes away what is left of the one before
    EXPECT_EQ(TakeErrorInformation(), L"none");
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerErrorInformation, SupportIsAnsweredAsToldForTheObjectsInterfaceOnly) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_OK);
    EXPECT_EQ(AskSupport(automation, __uuidof(IPrinterQueue)), S_FALSE);
    server.SupportErrorInfo("IPrinterQueue", ErrorInfoSupport::Absent);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_OK);
    server.SupportErrorInfo(ErrorInfoSupport::No);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), S_FALSE);
    server.SupportErrorInfo("IDriverAutomation", ErrorInfoSupport::Absent);
    EXPECT_EQ(AskSupport(automation, __uuidof(IDriverAutomation)), E_NOINTERFACE);
    automation->Release();
}

TEST(FakeServerFaults, ALeakedObjectIsNamed) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    IPrinterQueue* queue = nullptr;
    automation->GetPrinterQueue(&queue);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{"not released: PrinterQueue#1"});
    queue->Release();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALeakedTextOfTheServerIsNamed) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    BSTR text = nullptr;
    automation->GetComment(&text);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{"not freed: text of DriverAutomation#1.GetComment"});
    SysFreeString(text);
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALeakedArgumentIsNamed) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    const BSTR text = SysAllocString(L"x");
    automation->PutComment(text);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{"not freed: text of DriverAutomation#1.PutComment (argument)"});
    SysFreeString(text);
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ATextThatIsFreedTwiceIsNamed) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    BSTR text = nullptr;
    automation->GetComment(&text);
    SysFreeString(text);
    SysFreeString(text);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{"freed twice: text of DriverAutomation#1.GetComment"});
}

TEST(FakeServerFaults, AUseAfterTheLastReleaseIsNamed) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    automation->Release();
    automation->PutComment(nullptr);
    automation->AddRef();
    automation->Release();
    EXPECT_EQ(server.Faults(), (Lines{"used after its last release: DriverAutomation#1.PutComment",
                                      "used after its last release: DriverAutomation#1.AddRef",
                                      "used after its last release: DriverAutomation#1.Release"}));
}

TEST(FakeServerFaults, AnArgumentThatIsNoBstrIsReported) {
    FakeServer server;
    IDriverAutomation* const automation = Bound(L"A");
    wchar_t text[] = L"array";
    automation->PutComment(text);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{"DriverAutomation#1.PutComment: the argument is no BSTR"});
    EXPECT_EQ(server.Calls().back(), "DriverAutomation#1.PutComment(not a BSTR)");
}

TEST(FakeServerFaults, LeakedErrorInformationAndItsTextsAreNamed) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    IDriverAutomation* const automation = Bound(L"A");
    automation->PutComment(nullptr);
    automation->Release();
    IErrorInfo* information = nullptr;
    GetErrorInfo(0, &information);
    BSTR source = nullptr;
    information->GetSource(&source);
    EXPECT_EQ(server.Faults(),
              (Lines{"not released: ErrorInformation#1", "not freed: text of ErrorInformation#1.GetSource"}));
    information->Release();
    SysFreeString(source);
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ErrorInformationThatNobodyFetchedIsNoFault) {
    FakeServer server;
    server.Fail("IDriverAutomation.PutComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    IDriverAutomation* const automation = Bound(L"A");
    automation->PutComment(nullptr);
    automation->Release();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, ALockedFactoryIsReported) {
    FakeServer server;
    IClassFactory* factory = nullptr;
    ASSERT_EQ(CoGetClassObject(__uuidof(DriverActions), CLSCTX_INPROC_SERVER, nullptr,
                               __uuidof(IClassFactory), reinterpret_cast<void**>(&factory)),
              S_OK);
    factory->LockServer(TRUE);
    EXPECT_EQ(server.Faults(), Lines{"locks of class factories: 1"});
    factory->LockServer(FALSE);
    factory->Release();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, AnUnbalancedInitialisationIsReported) {
    FakeServer server;
    CoInitialize(nullptr);
    EXPECT_EQ(server.Faults(), Lines{"initialisations of the runtime not undone: 1"});
    CoUninitialize();
    EXPECT_EQ(server.Faults(), Lines{});
}

TEST(FakeServerFaults, WhatOneServerSawLeakingDoesNotCountForTheNext) {
    BSTR text = nullptr;
    {
        FakeServer server;
        IDriverAutomation* const automation = Bound(L"A");
        automation->GetComment(&text);
        automation->Release();
    }
    FakeServer next;
    EXPECT_EQ(next.Faults(), Lines{});
    SysFreeString(text);
}

TEST(FakeServerFaults, AnObjectMayOutliveTheServer) {
    IDriverAutomation* automation = nullptr;
    {
        FakeServer server;
        automation = Bound(L"A");
    }
    FakeServer next;
    EXPECT_EQ(automation->Release(), 0U);
    EXPECT_EQ(next.Journal(), Lines{});
}

} // namespace
