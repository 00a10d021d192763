// Every operation with each of its spooler calls failing once, and each slow once: a printer is as before or
// fully changed, and nothing is left of the attempt.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <future>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

#include "automation/Owners.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterLocks.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Operations.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;
using namespace std::chrono_literals;

namespace {

class EveryFailure : public ObjectFixture {
  protected:
    struct Operation {
        const wchar_t* name;
        std::function<HRESULT()> call;
    };

    EveryFailure() {
        profileFolder = folder.Path();
        folder.Put(L"Zippy 300.profile", "Feed = FF");
        Prepare();
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
        EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK);
        EXPECT_EQ(automation->GetPrinterQueue(queue.Put()), S_OK);
        EXPECT_EQ(automation->GetPrinterInformation(information.Put()), S_OK);
        spooler.printers[L"Label A"].settings = MakeRichState(); // what an import is to bring
        EXPECT_EQ(settings->ExportSettings(InText(saved), kemba::OwnedVariant::Omitted().Get()), S_OK);
        request->PutExecute(VARIANT_TRUE);
    }

    /// The printer before each call, and nothing left of an earlier one.
    void Prepare() {
        FakeSpooler::Record& label = spooler.printers[L"Label A"];
        label = {L"OLD", L"USB001", L"Zippy 300",    L"old comment", L"old location", 0,
                 0x40,   0,         MakeOtherState()};
        spooler.printed.clear();
        spooler.commands.clear();
        spooler.journal.clear();
        spooler.calls = spooler.failAt = spooler.slowAt = 0;
        spooler.queue.clear();
    }

    /// What somebody can see of the printer.
    using Sight = std::tuple<FakeSpooler::Record, std::string, std::vector<DWORD>>;
    Sight Look() { return {spooler.printers[L"Label A"], spooler.printed, spooler.commands}; }

    HRESULT Text(HRESULT (STDMETHODCALLTYPE IDriverAutomation::*operation)(BSTR*)) {
        kemba::OwnedBstr text;
        return (static_cast<IDriverAutomation&>(*automation).*operation)(text.Put());
    }

    std::vector<Operation> Operations() {
        const auto omitted = [] { return kemba::OwnedVariant::Omitted(); };
        return {
            {L"PutPrinterName", [&] { return MakeAutomation()->PutPrinterName(InText(L"Label A")); }},
            {L"GetComment", [&] { return Text(&IDriverAutomation::GetComment); }},
            {L"GetLocation", [&] { return Text(&IDriverAutomation::GetLocation); }},
            {L"GetModelName", [&] { return Text(&IDriverAutomation::GetModelName); }},
            {L"GetPortName", [&] { return Text(&IDriverAutomation::GetPortName); }},
            {L"GetShareName", [&] { return Text(&IDriverAutomation::GetShareName); }},
            {L"GetDriverVersion", [&] { return Text(&IDriverAutomation::GetDriverVersion); }},
            {L"GetDriverVersionDetail", [&] { return Text(&IDriverAutomation::GetDriverVersionDetail); }},
            {L"GetStatus",
             [&] {
                 kemba::OwnedBstr text;
                 return information->GetStatus(text.Put());
             }},
            {L"PutComment", [&] { return automation->PutComment(InText(L"new")); }},
            {L"PutLocation", [&] { return automation->PutLocation(InText(L"new")); }},
            {L"PutShareName", [&] { return automation->PutShareName(InText(L"NEW")); }},
            {L"Pause", [&] { return queue->Pause(); }},
            {L"Resume", [&] { return queue->Resume(); }},
            {L"Purge", [&] { return queue->Purge(); }},
            {L"SendFile", [&] { return automation->SendFile(InText(file.Path()), nullptr); }},
            {L"PerformAction",
             [&] { return automation->PerformAction(4, kemba::OwnedVariant(request.Get()).Get()); }},
            {L"PerformAction",
             [&] { return automation->PerformAction(14, kemba::OwnedVariant(request.Get()).Get()); }},
            {L"PerformAction",
             [&] { return automation->PerformAction(17, kemba::OwnedVariant(request.Get()).Get()); }},
            {L"ExportSettings",
             [&, omitted] { return settings->ExportSettings(InText(again), omitted().Get()); }},
            {L"ImportSettings",
             [&, omitted] { return settings->ImportSettings(InText(saved), omitted().Get()); }},
            {L"ResetSettings", [&, omitted] { return settings->ResetSettings(omitted().Get()); }},
        };
    }

    bool IsLockFree() {
        auto held = std::async(std::launch::async, [this] { const PrinterHold hold(locks, L"Label A"); });
        return held.wait_for(10s) == std::future_status::ready;
    }
    void ExpectNothingLeft() {
        EXPECT_TRUE(spooler.queue.empty());
        EXPECT_EQ(spooler.open, 1); // for questions
        EXPECT_EQ(spooler.printers.size(), 1u);
        EXPECT_LE(files.Count(), 2);
        ASSERT_TRUE(IsLockFree());
    }

    TemporaryFolder folder;
    TemporaryFolder files;
    const std::wstring saved = files.File(L"saved.vqs");
    const std::wstring again = files.File(L"again.vqs");
    const TemporaryFile file{std::string(100'000, 'x')};
    ComPtr<DriverAutomationObject> automation = MakeAutomation();
    ComPtr<DriverActionsObject> request = MakeObject<DriverActionsObject>(context);
    ComPtr<IDriverSettings> settings;
    ComPtr<IPrinterQueue> queue;
    ComPtr<IPrinterInformation> information;
};

/// Operations that ask the spooler for nothing.
constexpr std::wstring_view kWithoutSpooler[] = {
    L"GetPrinterQueue", L"GetPrinterInformation", L"GetSettings", L"PutExecute",
    L"GetSupported",    L"GetDisplaysInterface",  L"GetVersion",  L"GetVersionDetail"};

TEST_F(EveryFailure, IsTriedForEveryOperationOfTheContract) {
    for (const kit::Operation& row : AllOperations()) {
        const std::string_view narrow = row.name.substr(row.name.find('.') + 1);
        const std::wstring name(narrow.begin(), narrow.end());
        const auto tried = Operations();
        EXPECT_TRUE(
            std::ranges::count(kWithoutSpooler, name) == 1 ||
            std::ranges::any_of(tried, [&](const Operation& operation) { return operation.name == name; }))
            << "add a call of " << row.name << " to Operations() in " << __FILE__;
    }
}

TEST_F(EveryFailure, LeavesThePrinterAsBeforeOrFullyChangedAndIsExplained) {
    int failures = 0;
    for (const Operation& operation : Operations()) {
        Prepare();
        const Sight before = Look();
        ASSERT_EQ(operation.call(), S_OK) << testing::PrintToString(operation.name);
        const Sight after = Look();
        const int calls = spooler.calls;
        ASSERT_GT(calls, 0) << testing::PrintToString(operation.name);
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::PrintToString(operation.name) + ", call " + std::to_string(call));
            Prepare();
            spooler.failAt = call;
            const HRESULT status = operation.call();
            spooler.failAt = 0;
            const std::wstring description = TakeErrorTexts().description;
            if (FAILED(status)) {
                ++failures;
                EXPECT_EQ(status, HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
                const std::wstring bound =
                    operation.name == std::wstring(L"PutPrinterName") ? L"" : L" on printer \"Label A\"";
                EXPECT_EQ(description.find(operation.name + bound + L": "), 0u)
                    << testing::PrintToString(description);
                EXPECT_NE(description.find(L"(error 29)"), std::wstring::npos)
                    << testing::PrintToString(description);
                EXPECT_EQ(description.find(L"std::"), std::wstring::npos);
                EXPECT_EQ(description.find(L"basic_"), std::wstring::npos);
                EXPECT_TRUE(Look() == before);
            } else {
                EXPECT_TRUE(Look() == after); // the call was not needed
            }
            ASSERT_NO_FATAL_FAILURE(ExpectNothingLeft());
        }
    }
    EXPECT_GT(failures, 100);
}

TEST_F(EveryFailure, ASlowCallLosesNobodysChange) {
    for (const Operation& operation : Operations()) {
        Prepare();
        ASSERT_EQ(operation.call(), S_OK);
        Sight after = Look();
        const int calls = spooler.calls;
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::PrintToString(operation.name) + ", call " + std::to_string(call));
            Prepare();
            spooler.slowAt = call;
            const bool changesLocation = operation.name == std::wstring(L"PutLocation");
            std::thread other([&] {
                const Printer printer(spooler, locks, L"Label A");
                changesLocation ? printer.ChangeComment(L"by another")
                                : printer.ChangeLocation(L"by another");
            });
            EXPECT_EQ(operation.call(), S_OK);
            other.join();
            Sight expected = after;
            (changesLocation ? std::get<0>(expected).comment : std::get<0>(expected).location) =
                L"by another";
            EXPECT_TRUE(Look() == expected);
            ASSERT_NO_FATAL_FAILURE(ExpectNothingLeft());
        }
    }
}

} // namespace
