// What an administrator changes: texts, sharing, the queue's state.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/Texts.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class Administration : public ObjectFixture {
  protected:
    Administration() {
        spooler.printers[L"Label A"] = {L"OLD",          L"USB001", L"Zippy 300", L"old comment",
                                        L"old location", 0,         0x40,         0};
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }
    FakeSpooler::Record& Label() { return spooler.printers[L"Label A"]; }
    ComPtr<IPrinterQueue> Queue() {
        ComPtr<IPrinterQueue> queue;
        EXPECT_EQ(automation->GetPrinterQueue(queue.Put()), S_OK);
        return queue;
    }

    ComPtr<DriverAutomationObject> automation = MakeAutomation();
};

TEST_F(Administration, AChangeChangesOneThingAndLeavesTheOthers) {
    EXPECT_EQ(automation->PutComment(InText(L"new comment")), S_OK);
    EXPECT_EQ(Label().comment, L"new comment");
    EXPECT_EQ(Label().location, L"old location");
    EXPECT_EQ(automation->PutLocation(InText(L"new location")), S_OK);
    EXPECT_EQ(Label().location, L"new location");
    EXPECT_EQ(Label().comment, L"new comment");
    EXPECT_EQ(Label().share, L"OLD");
    EXPECT_EQ(Label().port, L"USB001");
    EXPECT_EQ(Label().driver, L"Zippy 300");
    EXPECT_EQ(Label().attributes, 0x40u);
    EXPECT_TRUE(spooler.keptSecurityAndMode);
}

TEST_F(Administration, EmptyAndMissingTextsClear) {
    EXPECT_EQ(automation->PutComment(InText(L"")), S_OK);
    EXPECT_EQ(Label().comment, L"");
    EXPECT_EQ(automation->PutLocation(nullptr), S_OK);
    EXPECT_EQ(Label().location, L"");
}

TEST_F(Administration, AShareNameSharesAndAnEmptyOneEndsSharing) {
    EXPECT_EQ(automation->PutShareName(InText(L"DOCK")), S_OK);
    EXPECT_EQ(Label().share, L"DOCK");
    EXPECT_EQ(Label().attributes, 0x48u);
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetShareName, text), S_OK);
    EXPECT_EQ(text, L"DOCK");
    EXPECT_EQ(automation->PutShareName(InText(L"")), S_OK);
    EXPECT_EQ(Label().attributes, 0x40u);
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetShareName, text), S_OK);
    EXPECT_EQ(text, L"");
}

TEST_F(Administration, OnlyChangesAskForAdministration) {
    std::wstring text;
    ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, text);
    EXPECT_EQ(spooler.accesses, std::vector<DWORD>{PRINTER_ACCESS_USE});
    automation->PutComment(InText(L"new"));
    ASSERT_EQ(spooler.accesses.size(), 2u);
    EXPECT_EQ(spooler.accesses[1], DWORD(PRINTER_ACCESS_USE | PRINTER_ACCESS_ADMINISTER));
    EXPECT_EQ(spooler.open, 1); // the right is given back at once
}

TEST_F(Administration, TheQueueObjectGivesTheCommands) {
    const auto queue = Queue();
    EXPECT_EQ(queue->Pause(), S_OK);
    EXPECT_EQ(queue->Pause(), S_OK); // it stays paused
    EXPECT_EQ(queue->Resume(), S_OK);
    EXPECT_EQ(queue->Purge(), S_OK);
    EXPECT_EQ(spooler.commands, (std::vector<DWORD>{1, 1, 2, 3}));
    EXPECT_EQ(queue->Reserved1(), E_NOTIMPL);
}

TEST_F(Administration, TheQueueObjectOutlivesItsMaker) {
    const auto queue = Queue();
    automation.Reset();
    EXPECT_EQ(queue->Purge(), S_OK);
    EXPECT_EQ(spooler.commands, std::vector<DWORD>{3});
}

TEST_F(Administration, RefusalsTellWhatWasTriedOnWhichPrinter) {
    const auto queue = Queue();
    const InText text(L"X");
    const InText none(L"");
    const std::pair<const wchar_t*, std::function<HRESULT()>> rows[] = {
        {L"PutComment on printer \"Label A\": changing the comment failed: ",
         [&] { return automation->PutComment(text); }},
        {L"PutLocation on printer \"Label A\": changing the location failed: ",
         [&] { return automation->PutLocation(text); }},
        {L"PutShareName on printer \"Label A\": sharing as \"X\" failed: ",
         [&] { return automation->PutShareName(text); }},
        {L"PutShareName on printer \"Label A\": ending the sharing failed: ",
         [&] { return automation->PutShareName(none); }},
        {L"Pause on printer \"Label A\": pausing the queue failed: ", [&] { return queue->Pause(); }},
        {L"Resume on printer \"Label A\": resuming the queue failed: ", [&] { return queue->Resume(); }},
        {L"Purge on printer \"Label A\": purging the queue failed: ", [&] { return queue->Purge(); }},
    };
    spooler.failing = FakeSpooler::Call::SetRecord;
    for (const auto& [description, call] : rows) {
        SCOPED_TRACE(description);
        EXPECT_EQ(call(), HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
        EXPECT_TRUE(BeginsWith(TakeErrorTexts().description, description));
        EXPECT_EQ(spooler.open, 1);
    }
    spooler.failing = FakeSpooler::Call::None;
    spooler.rights = PRINTER_ACCESS_USE;
    for (const auto& [description, call] : rows) {
        SCOPED_TRACE(description);
        const std::wstring operation(description, std::wstring(description).find(L':'));
        EXPECT_EQ(call(), E_ACCESSDENIED);
        EXPECT_TRUE(
            BeginsWith(TakeErrorTexts().description, operation + L": opening printer \"Label A\" failed: "));
    }
    EXPECT_EQ(Label().comment, L"old comment");
    EXPECT_EQ(Label().attributes, 0x40u);
}

TEST_F(Administration, NothingIsChangedBeforeBinding) {
    const auto unbound = MakeAutomation();
    EXPECT_EQ(unbound->PutComment(InText(L"X")), E_UNEXPECTED);
    EXPECT_EQ(unbound->PutLocation(InText(L"X")), E_UNEXPECTED);
    EXPECT_EQ(unbound->PutShareName(InText(L"X")), E_UNEXPECTED);
    auto* queue = reinterpret_cast<IPrinterQueue*>(1);
    EXPECT_EQ(unbound->GetPrinterQueue(&queue), E_UNEXPECTED);
    EXPECT_EQ(queue, nullptr);
}

} // namespace
