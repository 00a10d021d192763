// The main object: binding, reading, and what it tells when something fails.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class DriverAutomationObject : public ObjectFixture {
  protected:
    DriverAutomationObject() {
        spooler.printers[L"Label A"] = {L"LABELA",
                                        L"USB001, USB002",
                                        L"Zippy 300",
                                        L"by the door",
                                        L"Hall, left side",
                                        0x8,
                                        PRINTER_ATTRIBUTE_SHARED,
                                        2};
    }
    ComPtr<kemba::substitute::DriverAutomationObject> MakeBound() {
        auto automation = MakeAutomation();
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
        return automation;
    }
};

using TextOperation = HRESULT (STDMETHODCALLTYPE IDriverAutomation::*)(BSTR*);

const struct {
    const wchar_t* name;
    TextOperation operation;
    const wchar_t* text;
} kTextOperations[] = {
    {L"GetShareName", &IDriverAutomation::GetShareName, L"LABELA"},
    {L"GetPortName", &IDriverAutomation::GetPortName, L"USB001, USB002"},
    {L"GetModelName", &IDriverAutomation::GetModelName, L"Zippy 300"},
    {L"GetComment", &IDriverAutomation::GetComment, L"by the door"},
    {L"GetLocation", &IDriverAutomation::GetLocation, L"Hall, left side"},
};

TEST_F(DriverAutomationObject, ReadsEveryFieldOfItsPrinter) {
    const auto automation = MakeBound();
    for (const auto& row : kTextOperations) {
        SCOPED_TRACE(row.name);
        std::wstring text;
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, row.operation, text), S_OK);
        EXPECT_EQ(text, row.text);
    }
}

TEST_F(DriverAutomationObject, AFieldThatThePrinterLacksIsEmptyAndNotNull) {
    spooler.printers[L"Label A"] = {};
    const auto automation = MakeBound();
    for (const auto& row : kTextOperations) {
        SCOPED_TRACE(row.name);
        std::wstring text;
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, row.operation, text), S_OK);
        EXPECT_EQ(text, L"");
    }
}

TEST_F(DriverAutomationObject, ReadingBeforeBindingIsRefused) {
    const auto automation = MakeAutomation();
    for (const auto& row : kTextOperations) {
        SCOPED_TRACE(row.name);
        std::wstring text;
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, row.operation, text), E_UNEXPECTED);
        EXPECT_EQ(text, L"(null)");
        EXPECT_EQ(TakeErrorTexts().description, std::wstring(row.name) + L": no printer has been named yet");
    }
    auto* information = reinterpret_cast<IPrinterInformation*>(1);
    EXPECT_EQ(automation->GetPrinterInformation(&information), E_UNEXPECTED);
    EXPECT_EQ(information, nullptr);
}

TEST_F(DriverAutomationObject, NullPlacesForResultsAreRefused) {
    const auto automation = MakeBound();
    for (const auto& row : kTextOperations) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ((static_cast<IDriverAutomation&>(*automation).*row.operation)(nullptr), E_POINTER);
    }
    EXPECT_EQ(automation->GetPrinterInformation(nullptr), E_POINTER);
    EXPECT_EQ(automation->GetPrinterQueue(nullptr), E_POINTER);
    EXPECT_EQ(automation->GetSettings(nullptr), E_POINTER);
    EXPECT_EQ(automation->GetDriverVersion(nullptr), E_POINTER);
    EXPECT_TRUE(TakeErrorTexts().present);
    EXPECT_EQ(automation->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
    EXPECT_EQ(automation->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(automation->GetTypeInfo(0, 0, nullptr), E_POINTER);
}

TEST_F(DriverAutomationObject, AnUnknownPrinterIsRefusedAndTheObjectStaysFree) {
    const auto automation = MakeAutomation();
    EXPECT_EQ(automation->PutPrinterName(InText(L"Other")), HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    const ErrorTexts texts = TakeErrorTexts();
    EXPECT_EQ(texts.source, L"kemba-dal");
    EXPECT_EQ(texts.iid, __uuidof(IDriverAutomation));
    EXPECT_EQ(texts.description.find(L"PutPrinterName: opening printer \"Other\" failed: "), 0u);
    EXPECT_EQ(automation->PutPrinterName(nullptr), HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
}

TEST_F(DriverAutomationObject, IsBoundOnce) {
    spooler.printers[L"Label B"].comment = L"elsewhere";
    const auto automation = MakeBound();
    for (const wchar_t* const name : {L"Label B", L"Label A"}) {
        EXPECT_EQ(automation->PutPrinterName(InText(name)), E_UNEXPECTED);
        EXPECT_EQ(TakeErrorTexts().description,
                  L"PutPrinterName on printer \"Label A\": the object is bound to this printer for good");
    }
    std::wstring comment;
    ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, comment);
    EXPECT_EQ(comment, L"by the door");
}

TEST_F(DriverAutomationObject, AFailingSpoolerIsReportedWithOperationAndPrinter) {
    const auto automation = MakeBound();
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_ACCESS_DENIED;
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, text), E_ACCESSDENIED);
    const std::wstring description = TakeErrorTexts().description;
    EXPECT_EQ(description.find(L"GetComment on printer \"Label A\": asking the spooler failed: "), 0u);
    EXPECT_NE(description.find(L"error 5"), std::wstring::npos);
}

TEST_F(DriverAutomationObject, ASuccessfulCallLeavesNoErrorInformationBehind) {
    const auto automation = MakeAutomation();
    std::wstring text;
    ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, text);
    EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    EXPECT_FALSE(TakeErrorTexts().present);
}

TEST_F(DriverAutomationObject, WhatIsNotOfferedSaysSo) {
    const auto automation = MakeBound();
    const std::pair<const wchar_t*, std::function<HRESULT()>> rows[] = {
        {L"Reserved4", [&] { return automation->Reserved4(); }},
        {L"Reserved5", [&] { return automation->Reserved5(); }},
        {L"Reserved9", [&] { return automation->Reserved9(); }},
        {L"Reserved15", [&] { return automation->Reserved15(); }},
        {L"Reserved16", [&] { return automation->Reserved16(); }},
        {L"Reserved17", [&] { return automation->Reserved17(); }},
        {L"Reserved18", [&] { return automation->Reserved18(); }},
    };
    for (const auto& [name, call] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(call(), E_NOTIMPL);
        EXPECT_EQ(TakeErrorTexts().description,
                  name + std::wstring(L" on printer \"Label A\": this server does not offer the operation"));
    }
}

TEST_F(DriverAutomationObject, TheStatusObjectTellsTheStateAndOutlivesItsMaker) {
    auto automation = MakeBound();
    ComPtr<IPrinterInformation> information;
    ASSERT_EQ(automation->GetPrinterInformation(information.Put()), S_OK);
    automation.Reset();
    std::wstring status;
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, status), S_OK);
    EXPECT_EQ(status, L"Paper jam, 2 jobs");
    spooler.printers[L"Label A"].attributes |= PRINTER_ATTRIBUTE_WORK_OFFLINE;
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, status), S_OK);
    EXPECT_EQ(status, L"Paper jam, Offline, 2 jobs");
    EXPECT_EQ(information->GetStatus(nullptr), E_POINTER);
    spooler.failing = FakeSpooler::Call::GetRecord;
    spooler.failure = ERROR_PRINTER_DELETED;
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, status),
              HRESULT_FROM_WIN32(ERROR_PRINTER_DELETED));
    EXPECT_EQ(TakeErrorTexts().description.find(L"GetStatus on printer \"Label A\": "), 0u);
}

TEST_F(DriverAutomationObject, GivesUpItsPrinterAndItsUseOfTheProcess) {
    MakeBound().Reset();
    EXPECT_EQ(spooler.open, 0);
    EXPECT_EQ(uses.Get().present, 0u);
    EXPECT_EQ(uses.Get().begun, 1u);
}

TEST_F(DriverAutomationObject, ManyThreadsMayBindReadAndChangeOneObject) {
    const auto automation = MakeAutomation();
    spooler.before = [](FakeSpooler::Call) {
        std::this_thread::yield();
    }; // a handle serves one thread at a time
    std::atomic<int> bound{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            const Apartment own(COINIT_MULTITHREADED);
            bound += automation->PutPrinterName(InText(L"Label A")) == S_OK ? 1 : 0;
            for (int round = 0; round < 20; ++round) {
                EXPECT_EQ(automation->PutLocation(InText(L"Hall")), S_OK);
                std::wstring comment;
                EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, comment),
                          S_OK);
                EXPECT_EQ(comment, L"by the door");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(bound, 1);
    EXPECT_EQ(spooler.open, 1);
    EXPECT_EQ(spooler.overlaps, 0);
}

} // namespace
