// Reading, applying and resetting settings on a spooler in memory that fails on demand.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsStore.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

class SettingsStore : public testing::Test {
  protected:
    SettingsStore() {
        state = MakeRichState();
        Record().driver = L"Zippy 300";
        printer.emplace(spooler, locks, L"Label");
    }
    FakeSpooler::Record& Record() { return spooler.printers[L"Label"]; }

    HRESULT StatusOf(const std::function<void()>& work) {
        const Failure failure = FailureOf(work);
        reason = failure.reason;
        return failure.status;
    }
    /// Lets each call of `work` fail in turn: each time the printer has to be as before.
    void FailEveryCall(const std::function<void()>& work) {
        const auto before = state;
        spooler.calls = 0;
        work();
        const int calls = spooler.calls;
        ASSERT_NE(state, before);
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(call);
            state = before;
            spooler.calls = 0;
            spooler.failAt = call;
            EXPECT_EQ(StatusOf(work), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
            EXPECT_EQ(state, before);
            EXPECT_EQ(spooler.open, 1);
            EXPECT_EQ(reason.find(L"could not be undone"), std::wstring::npos);
        }
    }

    FakeSpooler spooler;
    PrinterLocks locks;
    FakeSpooler::State& state = Record().settings;
    std::optional<Printer> printer;
    std::wstring reason;
};

TEST_F(SettingsStore, ReadsModesAndTheDataOfAllKeys) {
    EXPECT_EQ(ReadSettings(*printer), SettingsOf(MakeRichState()));
    state = {};
    EXPECT_EQ(ReadSettings(*printer), SettingsOf({}));
    EXPECT_EQ(spooler.open, 1);
}

TEST_F(SettingsStore, ReadsNothingThatStandsBehindATextsEnd) {
    auto& mode = *reinterpret_cast<DEVMODEW*>(state.globalMode->data());
    const std::wstring remains(L"Label\0secret", 12);
    remains.copy(mode.dmDeviceName, remains.size());
    remains.copy(mode.dmFormName, remains.size());
    const Settings settings = ReadSettings(*printer);
    const auto& read = *reinterpret_cast<const DEVMODEW*>(settings.globalMode->data());
    const std::wstring clean = L"Label" + std::wstring(CCHDEVICENAME - 5, L'\0');
    EXPECT_EQ(std::wstring(read.dmDeviceName, CCHDEVICENAME), clean);
    EXPECT_EQ(std::wstring(read.dmFormName, CCHFORMNAME), clean);
    EXPECT_EQ(CopiesOf(settings.globalMode), 2);
}

TEST_F(SettingsStore, ReadsTheDriversKeyAloneWhereKeysCannotBeListed) {
    spooler.lists = false;
    EXPECT_EQ(ReadSettings(*printer).values.size(), 3u);
}

TEST_F(SettingsStore, ReadingNeedsNoRightToAdminister) {
    spooler.rights = PRINTER_ACCESS_USE;
    EXPECT_EQ(ReadSettings(*printer), SettingsOf(MakeRichState()));
}

TEST_F(SettingsStore, AppliesExactlyWhatTheSettingsSay) {
    const Settings wanted = SettingsOf(MakeOtherState());
    ApplySettings(*printer, wanted);
    const Settings now = ReadSettings(*printer);
    EXPECT_EQ(CopiesOf(now.globalMode), 20);
    EXPECT_EQ(CopiesOf(now.userMode), 30);
    EXPECT_EQ(now.values, wanted.values);
}

TEST_F(SettingsStore, NamesThePrinterInTheDeviceMode) {
    ApplySettings(*printer, SettingsOf(MakeOtherState()));
    EXPECT_STREQ(reinterpret_cast<const DEVMODEW*>(state.globalMode->data())->dmDeviceName, L"Label");
    const std::wstring longName(100, L'x');
    spooler.Rename(L"Label", longName);
    ApplySettings(*printer, SettingsOf(MakeOtherState()));
    EXPECT_EQ(reinterpret_cast<const DEVMODEW*>(state.globalMode->data())->dmDeviceName,
              std::wstring(CCHDEVICENAME - 1, L'x'));
}

TEST_F(SettingsStore, ALevelThatTheSettingsLackStaysAsItIs) {
    Settings wanted = SettingsOf(MakeOtherState());
    wanted.userMode.reset();
    ApplySettings(*printer, wanted);
    EXPECT_EQ(CopiesOf(state.globalMode), 20);
    EXPECT_EQ(CopiesOf(state.userMode), 3);
}

TEST_F(SettingsStore, ExtraValuesStayWhereTheSystemCannotDelete) {
    spooler.deletes = false;
    ApplySettings(*printer, SettingsOf(MakeOtherState()));
    EXPECT_EQ(state.keys[L"PrinterDriverData\\Tray"].size(), 1u);
    EXPECT_EQ(state.keys[L"PrinterDriverData"][L"Darkness"].second, (Bytes{9, 0, 0, 0}));
}

TEST_F(SettingsStore, AnotherDriversSettingsAreRefused) {
    Settings wanted = SettingsOf(MakeOtherState());
    wanted.driver.name = L"Zippy 400";
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, wanted); }),
              HRESULT_FROM_WIN32(ERROR_UNKNOWN_PRINTER_DRIVER));
    EXPECT_NE(reason.find(L"driver \"Zippy 400\", the printer's driver is \"Zippy 300\""),
              std::wstring::npos);
    EXPECT_EQ(state, MakeRichState());
    wanted.driver = {L"ZIPPY 300", 1}; // letter case and version do not matter
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, wanted); }), S_OK);
}

TEST_F(SettingsStore, WithoutTheRightToAdministerNothingChanges) {
    spooler.rights = PRINTER_ACCESS_USE;
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, SettingsOf(MakeOtherState())); }), E_ACCESSDENIED);
    EXPECT_EQ(StatusOf([&] { ResetSettings(*printer); }), E_ACCESSDENIED);
    EXPECT_EQ(state, MakeRichState());
    EXPECT_EQ(reason.find(L"opening printer \"Label\" failed: "), 0u);
}

TEST_F(SettingsStore, ApplyingThatFailsAtAnyCallLeavesThePrinterAsItWas) {
    FailEveryCall([&] { ApplySettings(*printer, SettingsOf(MakeOtherState())); });
}

TEST_F(SettingsStore, ApplyingToABarePrinterThatFailsAtAnyCallLeavesItBare) {
    state = {};
    FailEveryCall([&] { ApplySettings(*printer, SettingsOf(MakeOtherState())); });
}

TEST_F(SettingsStore, ResettingThatFailsAtAnyCallLeavesThePrinterAsItWas) {
    FailEveryCall([&] { ResetSettings(*printer); });
}

TEST_F(SettingsStore, WhatCannotBeUndoneIsSaid) {
    spooler.calls = 0;
    ApplySettings(*printer, SettingsOf(MakeOtherState()));
    spooler.failAt = spooler.calls; // the last change and everything after it
    spooler.failTo = spooler.calls + 100;
    spooler.calls = 0;
    state = MakeRichState();
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, SettingsOf(MakeOtherState())); }),
              HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
    EXPECT_NE(reason.find(L"setting the user's device mode failed: "), std::wstring::npos);
    EXPECT_NE(reason.find(L"; setting the printer's device mode could not be undone: "), std::wstring::npos);
    EXPECT_NE(reason.find(L"; changing the value \"PrinterDriverData\\Darkness\" could not be undone: "),
              std::wstring::npos);
}

TEST_F(SettingsStore, NewValuesComeAfterAllOthersWhereTheyCouldNotBeTakenBack) {
    spooler.deletes = false;
    auto other = MakeOtherState();
    other.keys[L"PrinterDriverData"][L"Zoom"] = {REG_DWORD, {2, 0, 0, 0}}; // changed, and its name comes last
    state.keys[L"PrinterDriverData"][L"Zoom"] = {REG_DWORD, {1, 0, 0, 0}};
    const auto before = state;
    int values = 0;
    spooler.before = [&](FakeSpooler::Call call) {
        values += call == FakeSpooler::Call::SetValue ? 1 : 0;
        spooler.failing = values == 3 ? FakeSpooler::Call::SetValue : FakeSpooler::Call::None;
    };
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, SettingsOf(other)); }),
              HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
    EXPECT_NE(reason.find(L"adding the value"), std::wstring::npos); // after the two that are changed
    EXPECT_EQ(state, before);
}

// A driver that drops an option which the printer's data do not allow.
TEST_F(SettingsStore, TheDriverResolvesADeviceModeAgainstTheDataThatComeWithIt) {
    spooler.merge = [](const FakeSpooler::Record& record, const Bytes& mode) {
        const auto found = record.settings.keys.find(L"PrinterDriverData");
        const bool installed = found != record.settings.keys.end() && found->second.contains(L"Cutter");
        return installed ? mode : MakeMode(0);
    };
    state = {};
    state.keys[L"PrinterDriverData"] = {{L"Cutter", {REG_DWORD, {1, 0, 0, 0}}}};
    state.globalMode = MakeMode(2);
    const Settings saved = ReadSettings(*printer);
    state = {};
    ApplySettings(*printer, saved);
    EXPECT_EQ(CopiesOf(state.globalMode), 2);
}

TEST_F(SettingsStore, AnInvalidParameterIsAFailureWhenAValueIsRemoved) {
    spooler.failing = FakeSpooler::Call::DeleteValue;
    spooler.failure = ERROR_INVALID_PARAMETER;
    EXPECT_EQ(StatusOf([&] { ApplySettings(*printer, SettingsOf(MakeOtherState())); }),
              HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(state, MakeRichState());
}

TEST_F(SettingsStore, AReaderWaitsForAHalfAppliedChange) {
    std::thread reader;
    std::atomic<bool> started{false};
    std::vector<PrinterValue> read;
    spooler.before = [&](FakeSpooler::Call call) {
        if (call == FakeSpooler::Call::SetRecord &&
            !started.exchange(true)) { // the data are there, the modes are not
            reader = std::thread([&] { read = ReadSettings(*printer).values; });
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            EXPECT_TRUE(read.empty());
        }
    };
    ApplySettings(*printer, SettingsOf(MakeOtherState()));
    ASSERT_TRUE(reader.joinable());
    reader.join();
    EXPECT_EQ(read, SettingsOf(MakeOtherState()).values);
}

TEST_F(SettingsStore, AReaderWaitsForAHalfDoneReset) {
    std::thread reader;
    std::atomic<bool> started{false};
    std::optional<Settings> read;
    std::atomic<int> changes{0};
    spooler.before = [&](FakeSpooler::Call call) {
        changes += call == FakeSpooler::Call::SetRecord ? 1 : 0;
        if (changes == 2 && !started.exchange(true)) { // the printer's mode is set, the user's is not
            reader = std::thread([&] { read = ReadSettings(*printer); });
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    };
    ResetSettings(*printer);
    ASSERT_TRUE(reader.joinable());
    reader.join();
    EXPECT_EQ(CopiesOf(read->globalMode), 1);
    EXPECT_EQ(CopiesOf(read->userMode), 1);
}

TEST_F(SettingsStore, APrinterThatKeepsItsCallerWaitingHoldsUpNoOther) {
    spooler.printers[L"Other"].settings = MakeRichState();
    spooler.printers[L"Other"].driver = L"Zippy 300";
    const Printer other(spooler, locks, L"Other");
    std::promise<void> release;
    std::promise<void> opened;
    std::once_flag first;
    spooler.opening = [&, released = release.get_future().share()](const std::wstring& name) {
        if (name == L"Other") {
            std::call_once(first, [&] { opened.set_value(); });
            released.wait();
        }
    };
    const auto waiting = std::async(std::launch::async, [&] { ResetSettings(other); });
    opened.get_future().wait();
    const auto served = std::async(std::launch::async, [&] { ResetSettings(*printer); });
    EXPECT_EQ(served.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_NE(waiting.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    release.set_value();
}

TEST_F(SettingsStore, ResetGivesTheDefaultToBothLevelsAndKeepsTheData) {
    ResetSettings(*printer);
    EXPECT_EQ(CopiesOf(state.globalMode), 1);
    EXPECT_EQ(CopiesOf(state.userMode), 1);
    EXPECT_EQ(state.keys, MakeRichState().keys);
}

TEST_F(SettingsStore, ResetLeavesAUserWhoFollowsThePrinterFollowing) {
    state.userMode.reset();
    ResetSettings(*printer);
    EXPECT_EQ(CopiesOf(state.globalMode), 1);
    EXPECT_EQ(state.userMode, std::nullopt);
}

TEST_F(SettingsStore, ADefaultThatIsNoDeviceModeIsRefused) {
    spooler.defaultMode.resize(60);
    EXPECT_EQ(StatusOf([&] { ResetSettings(*printer); }), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(state, MakeRichState());
}

} // namespace
