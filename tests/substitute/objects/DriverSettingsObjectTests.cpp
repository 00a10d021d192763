// Exporting, importing and resetting as a client sees it, on a spooler in memory.
#include "substitute/objects/DriverSettingsObject.h"

#include <gtest/gtest.h>

#include <thread>

#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/VqsFormat.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/SettingsSamples.h"
#include "tests/substitute/TemporaryFolder.h"

namespace {

using kemba::ComPtr;
using namespace kemba::substitute;

VARIANT Omitted() {
    VARIANT option = {};
    V_VT(&option) = VT_ERROR;
    V_ERROR(&option) = DISP_E_PARAMNOTFOUND;
    return option;
}

class DriverSettingsObjectTest : public ObjectFixture {
  protected:
    DriverSettingsObjectTest() {
        spooler.printers[L"Label A"].driver = L"Zippy 300";
        spooler.printers[L"Label A"].settings = MakeRichState();
        auto automation = MakeAutomation();
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
        EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK); // outlives its maker
    }
    HRESULT Export() { return settings->ExportSettings(InText(path), Omitted()); }
    HRESULT Import() { return settings->ImportSettings(InText(path), Omitted()); }

    TemporaryFolder folder;
    std::wstring path = folder.File(L"label.vqs");
    ComPtr<IDriverSettings> settings;
};

TEST_F(DriverSettingsObjectTest, AnExportComesBackByAnImport) {
    ASSERT_EQ(Export(), S_OK);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    ASSERT_EQ(Import(), S_OK);
    const std::wstring again = folder.File(L"again.vqs");
    ASSERT_EQ(settings->ExportSettings(InText(again), Omitted()), S_OK);
    const Settings now = DecodeVqs(ReadSettingsFile(again, kMaximumVqsSize));
    EXPECT_EQ(now.values, SettingsOf(MakeRichState()).values);
    EXPECT_EQ(CopiesOf(now.globalMode), 2);
    EXPECT_EQ(CopiesOf(now.userMode), 3);
    EXPECT_EQ(folder.Count(), 2);
    EXPECT_FALSE(TakeErrorTexts().present);
}

TEST_F(DriverSettingsObjectTest, ResetGivesTheDriversDefaults) {
    ASSERT_EQ(settings->ResetSettings(Omitted()), S_OK);
    EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 1);
}

TEST_F(DriverSettingsObjectTest, AnyOptionalArgumentIsRefused) {
    ASSERT_EQ(Export(), S_OK);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    const Bytes file = ReadSettingsFile(path, kMaximumVqsSize);
    VARIANT options[4] = {};
    V_VT(&options[1]) = VT_I4;
    V_VT(&options[2]) = VT_ERROR;
    V_ERROR(&options[2]) = E_FAIL;
    V_VT(&options[3]) = VT_NULL;
    for (const VARIANT& option : options) {
        SCOPED_TRACE(V_VT(&option));
        EXPECT_EQ(settings->ImportSettings(InText(path), option), E_INVALIDARG);
        EXPECT_EQ(TakeErrorTexts().description,
                  L"ImportSettings on printer \"Label A\": the optional argument has to be omitted");
        EXPECT_EQ(settings->ExportSettings(InText(path), option), E_INVALIDARG);
        EXPECT_TRUE(TakeErrorTexts().present);
        EXPECT_EQ(settings->ResetSettings(option), E_INVALIDARG);
        EXPECT_EQ(TakeErrorTexts().iid, __uuidof(IDriverSettings));
    }
    EXPECT_EQ(spooler.printers[L"Label A"].settings, MakeOtherState());
    EXPECT_EQ(ReadSettingsFile(path, kMaximumVqsSize), file);
}

TEST_F(DriverSettingsObjectTest, APathThatIsNotAbsoluteIsRefused) {
    for (const wchar_t* const relative :
         {L"", L"label.vqs", L"a\\label.vqs", L"C:label.vqs", L"\\label.vqs"}) {
        EXPECT_EQ(settings->ExportSettings(InText(relative), Omitted()),
                  HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
        EXPECT_NE(TakeErrorTexts().description.find(L"the path is not absolute"), std::wstring::npos);
        EXPECT_EQ(settings->ImportSettings(InText(relative), Omitted()),
                  HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    }
}

TEST_F(DriverSettingsObjectTest, AnExportThatFailsAtAnyCallLeavesTheOldFile) {
    ASSERT_EQ(Export(), S_OK);
    const int calls = spooler.calls;
    const Bytes file = ReadSettingsFile(path, kMaximumVqsSize);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    for (int call = 1; call <= calls; ++call) {
        SCOPED_TRACE(call);
        spooler.calls = 0;
        spooler.failAt = call;
        EXPECT_EQ(Export(), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
        const std::wstring description = TakeErrorTexts().description;
        EXPECT_EQ(description.find(L"ExportSettings on printer \"Label A\": exporting the settings to \"" +
                                   path + L"\": "),
                  0u);
        EXPECT_EQ(ReadSettingsFile(path, kMaximumVqsSize), file);
        EXPECT_EQ(folder.Count(), 1);
        EXPECT_EQ(spooler.printers[L"Label A"].settings, MakeOtherState());
    }
}

TEST_F(DriverSettingsObjectTest, SettingsThatNoFileMayHoldLeaveTheOldFile) {
    ASSERT_EQ(Export(), S_OK);
    const Bytes file = ReadSettingsFile(path, kMaximumVqsSize);
    spooler.printers[L"Label A"].settings.keys[L"PrinterDriverData"][L"Odd"] = {99, {}}; // no such type
    EXPECT_EQ(Export(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(ReadSettingsFile(path, kMaximumVqsSize), file);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(DriverSettingsObjectTest, AnImportThatFailsAtAnyCallSaysSoAndChangesNothing) {
    ASSERT_EQ(Export(), S_OK);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    spooler.calls = 0;
    ASSERT_EQ(Import(), S_OK);
    const int calls = spooler.calls;
    for (int call = 1; call <= calls; ++call) {
        SCOPED_TRACE(call);
        spooler.printers[L"Label A"].settings = MakeOtherState();
        spooler.calls = 0;
        spooler.failAt = call;
        EXPECT_EQ(Import(), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
        EXPECT_EQ(
            TakeErrorTexts().description.find(
                L"ImportSettings on printer \"Label A\": importing the settings of \"" + path + L"\": "),
            0u);
        EXPECT_EQ(spooler.printers[L"Label A"].settings, MakeOtherState());
    }
}

TEST_F(DriverSettingsObjectTest, BadFilesAreRefusedAndNothingIsAskedOfThePrinter) {
    ASSERT_EQ(Export(), S_OK);
    const Bytes good = ReadSettingsFile(path, kMaximumVqsSize);
    Bytes damaged = good;
    damaged[damaged.size() / 2] ^= 1;
    const Bytes cut(good.begin(), good.end() - 10);
    spooler.calls = 0;
    for (const Bytes& bytes : {damaged, cut, Bytes()}) {
        WriteSettingsFile(path, bytes);
        EXPECT_EQ(Import(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
        EXPECT_NE(TakeErrorTexts().description.find(L"not a usable settings file"), std::wstring::npos);
    }
    WriteSettingsFile(path, Bytes(kMaximumVqsSize + 1));
    EXPECT_EQ(Import(), HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    EXPECT_TRUE(TakeErrorTexts().present);
    EXPECT_EQ(settings->ImportSettings(nullptr, Omitted()), HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    EXPECT_EQ(settings->ExportSettings(nullptr, Omitted()), HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    EXPECT_EQ(spooler.printers[L"Label A"].settings, MakeRichState());
}

TEST_F(DriverSettingsObjectTest, TwoExportsAtOnceLeaveOneWholeFile) {
    std::vector<std::thread> threads;
    for (int index = 0; index < 2; ++index) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                WriteSettingsFile(path,
                                  EncodeVqs(SettingsOf(round % 2 ? MakeRichState() : MakeOtherState())));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(Import(), S_OK);
    EXPECT_EQ(folder.Count(), 1);
}

} // namespace
