// Reading, applying and resetting settings on a spooler in memory that fails on demand.
#include "substitute/settings/SettingsStore.h"

#include <gtest/gtest.h>

#include <functional>

#include "substitute/spooler/SettingsBuffer.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/SettingsSamples.h"

namespace {

using namespace kemba::substitute;

class SettingsStoreTest : public testing::Test {
  protected:
    SettingsStoreTest() { api.state = MakeRichState(); }

    HRESULT StatusOf(const std::function<void()>& work) {
        const Failure failure = FailureOf(work);
        reason = failure.reason;
        return failure.status;
    }
    /// Lets each call of `work` fail in turn: each time the printer has to be as before.
    void FailEveryCall(const std::function<void()>& work) {
        const auto before = api.state;
        work();
        const int calls = api.calls;
        ASSERT_NE(api.state, before);
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(call);
            api.state = before;
            api.calls = 0;
            api.failAt = call;
            EXPECT_EQ(StatusOf(work), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
            EXPECT_EQ(api.state, before);
            EXPECT_EQ(api.open, 0);
            EXPECT_EQ(reason.find(L"could not be undone"), std::wstring::npos);
        }
    }

    FakeSettingsApi api;
    SettingsStore store{api, L"Label"};
    std::wstring reason;
};

TEST_F(SettingsStoreTest, ReadsModesAndTheDataOfAllKeys) {
    EXPECT_EQ(store.Read(), SettingsOf(MakeRichState()));
    api.state = {};
    EXPECT_EQ(store.Read(), SettingsOf({}));
    EXPECT_EQ(api.open, 0);
}

TEST_F(SettingsStoreTest, ReadsNothingThatStandsBehindATextsEnd) {
    auto& mode = *reinterpret_cast<DEVMODEW*>(api.state.globalMode->data());
    const std::wstring remains(L"Label\0secret", 12);
    remains.copy(mode.dmDeviceName, remains.size());
    remains.copy(mode.dmFormName, remains.size());
    const Settings settings = store.Read();
    const auto& read = *reinterpret_cast<const DEVMODEW*>(settings.globalMode->data());
    const std::wstring clean = L"Label" + std::wstring(CCHDEVICENAME - 5, L'\0');
    EXPECT_EQ(std::wstring(read.dmDeviceName, CCHDEVICENAME), clean);
    EXPECT_EQ(std::wstring(read.dmFormName, CCHFORMNAME), clean);
    EXPECT_EQ(CopiesOf(settings.globalMode), 2);
}

TEST_F(SettingsStoreTest, ReadsTheDriversKeyAloneWhereKeysCannotBeListed) {
    api.lists = false;
    EXPECT_EQ(store.Read().values.size(), 3u);
}

TEST_F(SettingsStoreTest, ReadingNeedsNoRightToAdminister) {
    api.rightsHad = PRINTER_ACCESS_USE;
    EXPECT_EQ(store.Read(), SettingsOf(MakeRichState()));
}

TEST_F(SettingsStoreTest, AppliesExactlyWhatTheSettingsSay) {
    const Settings wanted = SettingsOf(MakeOtherState());
    store.Apply(wanted);
    const Settings now = store.Read();
    EXPECT_EQ(CopiesOf(now.globalMode), 20);
    EXPECT_EQ(CopiesOf(now.userMode), 30);
    EXPECT_EQ(now.values, wanted.values);
}

TEST_F(SettingsStoreTest, NamesThePrinterInTheDeviceMode) {
    store.Apply(SettingsOf(MakeOtherState()));
    EXPECT_STREQ(reinterpret_cast<const DEVMODEW*>(api.state.globalMode->data())->dmDeviceName, L"Label");
    const SettingsStore longName(api, std::wstring(100, L'x'));
    longName.Apply(SettingsOf(MakeOtherState()));
    EXPECT_EQ(reinterpret_cast<const DEVMODEW*>(api.state.globalMode->data())->dmDeviceName,
              std::wstring(CCHDEVICENAME - 1, L'x'));
}

TEST_F(SettingsStoreTest, ALevelThatTheSettingsLackStaysAsItIs) {
    Settings wanted = SettingsOf(MakeOtherState());
    wanted.userMode.reset();
    store.Apply(wanted);
    EXPECT_EQ(CopiesOf(api.state.globalMode), 20);
    EXPECT_EQ(CopiesOf(api.state.userMode), 3);
}

TEST_F(SettingsStoreTest, ExtraValuesStayWhereTheSystemCannotDelete) {
    api.deletes = false;
    store.Apply(SettingsOf(MakeOtherState()));
    EXPECT_EQ(api.state.keys[L"PrinterDriverData\\Tray"].size(), 1u);
    EXPECT_EQ(api.state.keys[L"PrinterDriverData"][L"Darkness"].second, (Bytes{9, 0, 0, 0}));
}

TEST_F(SettingsStoreTest, AnotherDriversSettingsAreRefused) {
    Settings wanted = SettingsOf(MakeOtherState());
    wanted.driver.name = L"Zippy 400";
    EXPECT_EQ(StatusOf([&] { store.Apply(wanted); }), HRESULT_FROM_WIN32(ERROR_UNKNOWN_PRINTER_DRIVER));
    EXPECT_NE(reason.find(L"driver \"Zippy 400\", the printer's driver is \"Zippy 300\""),
              std::wstring::npos);
    EXPECT_EQ(api.state, MakeRichState());
    wanted.driver = {L"ZIPPY 300", 1}; // letter case and version do not matter
    EXPECT_EQ(StatusOf([&] { store.Apply(wanted); }), S_OK);
}

TEST_F(SettingsStoreTest, WithoutTheRightToAdministerNothingChanges) {
    api.rightsHad = PRINTER_ACCESS_USE;
    EXPECT_EQ(StatusOf([&] { store.Apply(SettingsOf(MakeOtherState())); }), E_ACCESSDENIED);
    EXPECT_EQ(StatusOf([&] { store.Reset(); }), E_ACCESSDENIED);
    EXPECT_EQ(api.state, MakeRichState());
    EXPECT_EQ(reason.find(L"opening the printer failed: "), 0u);
}

TEST_F(SettingsStoreTest, ApplyingThatFailsAtAnyCallLeavesThePrinterAsItWas) {
    FailEveryCall([&] { store.Apply(SettingsOf(MakeOtherState())); });
}

TEST_F(SettingsStoreTest, ApplyingToABarePrinterThatFailsAtAnyCallLeavesItBare) {
    api.state = {};
    FailEveryCall([&] { store.Apply(SettingsOf(MakeOtherState())); });
}

TEST_F(SettingsStoreTest, ResettingThatFailsAtAnyCallLeavesThePrinterAsItWas) {
    FailEveryCall([&] { store.Reset(); });
}

TEST_F(SettingsStoreTest, WhatCannotBeUndoneIsSaid) {
    store.Apply(SettingsOf(MakeOtherState()));
    api.failAt = api.calls; // the last change and everything after it
    api.failTo = api.calls + 100;
    api.calls = 0;
    api.state = MakeRichState();
    EXPECT_EQ(StatusOf([&] { store.Apply(SettingsOf(MakeOtherState())); }),
              HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
    EXPECT_NE(reason.find(L"; setting the printer's device mode could not be undone: "), std::wstring::npos);
    EXPECT_NE(reason.find(L"; changing the value \"PrinterDriverData\\Darkness\" could not be undone: "),
              std::wstring::npos);
}

TEST_F(SettingsStoreTest, NewValuesComeLastWhereTheyCouldNotBeTakenBack) {
    api.deletes = false;
    const auto before = api.state;
    store.Apply(SettingsOf(MakeOtherState()));
    const int first = api.calls - 3 + 1; // of the three new values
    api.state = before;
    api.calls = 0;
    api.failAt = first;
    EXPECT_NE(StatusOf([&] { store.Apply(SettingsOf(MakeOtherState())); }), S_OK);
    EXPECT_NE(reason.find(L"adding the value"), std::wstring::npos);
    EXPECT_EQ(api.state, before);
}

TEST_F(SettingsStoreTest, ResetGivesTheDefaultToBothLevelsAndKeepsTheData) {
    store.Reset();
    EXPECT_EQ(CopiesOf(api.state.globalMode), 1);
    EXPECT_EQ(CopiesOf(api.state.userMode), 1);
    EXPECT_EQ(api.state.keys, MakeRichState().keys);
}

TEST_F(SettingsStoreTest, ResetLeavesAUserWhoFollowsThePrinterFollowing) {
    api.state.userMode.reset();
    store.Reset();
    EXPECT_EQ(CopiesOf(api.state.globalMode), 1);
    EXPECT_EQ(api.state.userMode, std::nullopt);
}

TEST_F(SettingsStoreTest, ADefaultThatIsNoDeviceModeIsRefused) {
    api.defaultMode.resize(60);
    EXPECT_EQ(StatusOf([&] { store.Reset(); }), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(api.state, MakeRichState());
}

TEST(SettingsBuffer, AsksAgainUntilTheBufferIsLargeEnough) {
    for (const DWORD tooSmall : {ERROR_INSUFFICIENT_BUFFER, ERROR_MORE_DATA}) {
        Bytes buffer;
        std::vector<DWORD> sizes;
        const DWORD error = FillBuffer(buffer, [&](BYTE*, DWORD size, DWORD& needed) {
            sizes.push_back(size);
            needed = sizes.size() < 4 ? static_cast<DWORD>(10 * sizes.size()) : size;
            return sizes.size() < 4 ? tooSmall : DWORD{ERROR_SUCCESS};
        });
        EXPECT_EQ(error, DWORD{ERROR_SUCCESS});
        EXPECT_EQ(sizes, (std::vector<DWORD>{0, 10, 20, 30}));
    }
}

TEST(SettingsBuffer, ASizeThatDoesNotGrowEndsTheAsking) {
    Bytes buffer;
    EXPECT_EQ(FillBuffer(buffer,
                         [](BYTE*, DWORD, DWORD& needed) {
                             needed = 8;
                             return DWORD{ERROR_INSUFFICIENT_BUFFER};
                         }),
              DWORD{ERROR_INSUFFICIENT_BUFFER});
}

} // namespace
