// The operations by name: the table against the objects, operation by operation.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"

using namespace kemba;
using namespace kit;

namespace {

/// One object with each of the interfaces.
struct Objects {
    const ComPtr<IDriverAutomation> automation = kemba::ActivateForPrinter(L"A");
    const ComPtr<IDriverSettings> settings = CallForObject(automation, &IDriverAutomation::GetSettings);
    const ComPtr<IDriverActions> actions = kemba::Activate<DriverActions, IDriverActions>();
    const ComPtr<IPrinterQueue> queue = CallForObject(automation, &IDriverAutomation::GetPrinterQueue);
    const ComPtr<IPrinterInformation> information =
        CallForObject(automation, &IDriverAutomation::GetPrinterInformation);
    const ComPtr<IVersionInformation> version = kemba::Activate<VersionInformation, IVersionInformation>();
};

/// Where an operation leaves what it gives.
struct Out {
    template<class Part>
    HRESULT Get(const ComPtr<IDriverAutomation>& from, HRESULT (IDriverAutomation::*get)(Part**)) {
        Part* part = nullptr;
        const HRESULT status = (from.Get()->*get)(&part);
        object = ComPtr<IUnknown>(part);
        return status;
    }

    OwnedBstr text;
    VARIANT_BOOL flag = 0;
    ComPtr<IUnknown> object;
};

using CallOne = std::function<HRESULT(Objects&, Out&)>;

const std::map<std::string_view, CallOne> kCalls = {
    {"IDriverAutomation.PutPrinterName",
     [](Objects& on, Out&) { return on.automation->PutPrinterName(nullptr); }},
    {"IDriverAutomation.SendFile",
     [](Objects& on, Out&) { return on.automation->SendFile(nullptr, nullptr); }},
    {"IDriverAutomation.PerformAction",
     [](Objects& on, Out&) { return on.automation->PerformAction(1, {}); }},
    {"IDriverAutomation.GetShareName",
     [](Objects& on, Out& out) { return on.automation->GetShareName(out.text.Put()); }},
    {"IDriverAutomation.PutShareName",
     [](Objects& on, Out&) { return on.automation->PutShareName(nullptr); }},
    {"IDriverAutomation.GetPortName",
     [](Objects& on, Out& out) { return on.automation->GetPortName(out.text.Put()); }},
    {"IDriverAutomation.GetModelName",
     [](Objects& on, Out& out) { return on.automation->GetModelName(out.text.Put()); }},
    {"IDriverAutomation.GetComment",
     [](Objects& on, Out& out) { return on.automation->GetComment(out.text.Put()); }},
    {"IDriverAutomation.PutComment", [](Objects& on, Out&) { return on.automation->PutComment(nullptr); }},
    {"IDriverAutomation.GetLocation",
     [](Objects& on, Out& out) { return on.automation->GetLocation(out.text.Put()); }},
    {"IDriverAutomation.PutLocation", [](Objects& on, Out&) { return on.automation->PutLocation(nullptr); }},
    {"IDriverAutomation.GetDriverVersion",
     [](Objects& on, Out& out) { return on.automation->GetDriverVersion(out.text.Put()); }},
    {"IDriverAutomation.GetDriverVersionDetail",
     [](Objects& on, Out& out) { return on.automation->GetDriverVersionDetail(out.text.Put()); }},
    {"IDriverAutomation.GetPrinterQueue",
     [](Objects& on, Out& out) { return out.Get(on.automation, &IDriverAutomation::GetPrinterQueue); }},
    {"IDriverAutomation.GetPrinterInformation",
     [](Objects& on, Out& out) { return out.Get(on.automation, &IDriverAutomation::GetPrinterInformation); }},
    {"IDriverAutomation.GetSettings",
     [](Objects& on, Out& out) { return out.Get(on.automation, &IDriverAutomation::GetSettings); }},
    {"IDriverSettings.ImportSettings",
     [](Objects& on, Out&) { return on.settings->ImportSettings(nullptr, {}); }},
    {"IDriverSettings.ExportSettings",
     [](Objects& on, Out&) { return on.settings->ExportSettings(nullptr, {}); }},
    {"IDriverSettings.ResetSettings", [](Objects& on, Out&) { return on.settings->ResetSettings({}); }},
    {"IDriverActions.PutExecute", [](Objects& on, Out&) { return on.actions->PutExecute(1); }},
    {"IDriverActions.GetSupported",
     [](Objects& on, Out& out) { return on.actions->GetSupported(&out.flag); }},
    {"IDriverActions.GetDisplaysInterface",
     [](Objects& on, Out& out) { return on.actions->GetDisplaysInterface(&out.flag); }},
    {"IPrinterQueue.Pause", [](Objects& on, Out&) { return on.queue->Pause(); }},
    {"IPrinterQueue.Resume", [](Objects& on, Out&) { return on.queue->Resume(); }},
    {"IPrinterQueue.Purge", [](Objects& on, Out&) { return on.queue->Purge(); }},
    {"IPrinterInformation.GetStatus",
     [](Objects& on, Out& out) { return on.information->GetStatus(out.text.Put()); }},
    {"IVersionInformation.GetVersion",
     [](Objects& on, Out& out) { return on.version->GetVersion(out.text.Put()); }},
    {"IVersionInformation.GetVersionDetail",
     [](Objects& on, Out& out) { return on.version->GetVersionDetail(out.text.Put()); }},
};

TEST(Operations, TheTableNamesExactlyTheOperationsOfTheObjects) {
    EXPECT_EQ(AllOperations().size(), kCalls.size())
        << "tests/kit/Operations.cpp has the rows, kCalls the calls";
    for (const Operation& operation : AllOperations()) {
        SCOPED_TRACE(operation.name);
        ASSERT_TRUE(kCalls.contains(operation.name)) << "add its call to kCalls in " << __FILE__;
        FakeServer server;
        {
            Objects objects;
            server.ClearJournal();
            Out out;
            EXPECT_EQ(kCalls.at(operation.name)(objects, out), S_OK);
            ASSERT_EQ(server.Calls().size(), 1U);
            const std::string shown = server.Calls().front();
            // "IPrinterQueue.Purge" is journaled as "PrinterQueue#1.Purge()"; a second part has the number 2.
            const std::string object(operation.Interface().substr(1));
            EXPECT_EQ(shown.find(object + "#1" +
                                 std::string(operation.name.substr(operation.name.find('.'))) + "("),
                      0U)
                << shown;
            EXPECT_EQ(static_cast<bool>(out.text), operation.WhatItGives() == Gives::Text);
            EXPECT_EQ(static_cast<bool>(out.object), operation.WhatItGives() == Gives::Object);
        }
        EXPECT_EQ(server.Faults(), Lines{});
    }
}

TEST(Operations, EveryOneFailsWhenToldAndGivesNothing) {
    for (const Operation& operation : AllOperations()) {
        SCOPED_TRACE(operation.name);
        FakeServer server;
        {
            Objects objects;
            server.Fail(operation.name, E_ACCESSDENIED);
            Out out;
            EXPECT_EQ(kCalls.at(operation.name)(objects, out), E_ACCESSDENIED);
            EXPECT_FALSE(out.text);
            EXPECT_FALSE(out.object);
            EXPECT_EQ(out.flag, VARIANT_FALSE);
        }
        EXPECT_EQ(server.Faults(), Lines{});
    }
}

TEST(Operations, TextsAndObjectsCanBeNull) {
    for (const Operation& operation : AllOperations()) {
        if (operation.WhatItGives() != Gives::Text && operation.WhatItGives() != Gives::Object) {
            continue;
        }
        SCOPED_TRACE(operation.name);
        FakeServer server;
        Objects objects;
        server.GiveNull(operation.name);
        Out out;
        EXPECT_EQ(kCalls.at(operation.name)(objects, out), S_OK);
        EXPECT_FALSE(out.text);
        EXPECT_FALSE(out.object);
    }
}

TEST(Operations, AreFoundByTheirExactName) {
    ASSERT_NE(FindOperation("IPrinterQueue.Purge"), nullptr);
    EXPECT_EQ(FindOperation("IPrinterQueue.Purge")->Interface(), "IPrinterQueue");
    EXPECT_EQ(FindOperation("IPrinterQueue.purge"), nullptr);
    EXPECT_EQ(FindOperation("IPrinterQueue.Reserved1"), nullptr);
}

} // namespace
