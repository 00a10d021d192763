// Settings on the system's own spooler and a real driver.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "automation/Owners.h"
#include "demo/LabelDriver.h"
#include "demo/Printers.h"
#include "substitute/base/Bytes.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/SettingsStore.h"
#include "substitute/settings/VqsFormat.h"
#include "substitute/spooler/PrinterHandle.h"
#include "substitute/spooler/WindowsSpooler.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class SettingsSpooler : public ObjectFixture {
  protected:
    SettingsSpooler() {
        automation = MakeObject<DriverAutomationObject>(realContext);
        EXPECT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
        EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK);
        V_VT(&omitted) = VT_ERROR;
        V_ERROR(&omitted) = DISP_E_PARAMNOTFOUND;
    }

    void SetValue(const std::wstring& name, DWORD type, const Bytes& data) {
        EXPECT_EQ(realSpooler.SetValue(handle.Get(), {kDriverDataKey, name, type, data}),
                  DWORD{ERROR_SUCCESS});
    }
    /// Turns the paper and asks for copies, as a user's settings would.
    void SetMode(short orientation, short copies) {
        std::optional<Bytes> bytes = handle.ReadMode(ModeLevel::Global);
        ASSERT_TRUE(bytes);
        auto& mode = *reinterpret_cast<DEVMODEW*>(bytes->data());
        mode.dmFields |= DM_ORIENTATION | DM_COPIES;
        mode.dmOrientation = orientation;
        mode.dmCopies = copies;
        ASSERT_EQ(handle.SetMode(ModeLevel::Global, bytes), DWORD{ERROR_SUCCESS});
    }
    Settings Read() { return ReadSettings(Printer(realSpooler, locks, printer.Name())); }
    DEVMODEW Mode() {
        DEVMODEW mode = {};
        std::memcpy(&mode, Read().globalMode->data(), sizeof(mode));
        return mode;
    }

    const demo::Printer printer;
    WindowsSpooler realSpooler;
    ServerContext realContext{realSpooler, locks, profiles, uses, types};
    const PrinterHandle handle{realSpooler, printer.Name(), PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE};
    TemporaryFolder folder;
    std::wstring path = folder.File(L"label.vqs");
    ComPtr<DriverAutomationObject> automation;
    ComPtr<IDriverSettings> settings;
    VARIANT omitted = {};
};

TEST_F(SettingsSpooler, AnImportBringsBackWhatWasExported) {
    SetMode(DMORIENT_LANDSCAPE, 3);
    SetValue(L"Darkness", REG_DWORD, {7, 0, 0, 0});
    SetValue(L"Blob", REG_BINARY, {0, 1, 2, 0xFF, 0});
    const Settings before = Read();
    EXPECT_EQ(before.driver.name, demo::LabelDriverName());
    ASSERT_EQ(settings->ExportSettings(InText(path), omitted), S_OK);
    EXPECT_EQ(DecodeVqs(ReadSettingsFile(path, kMaximumVqsSize)), before);

    SetMode(DMORIENT_PORTRAIT, 1);
    SetValue(L"Darkness", REG_SZ, {'x', 0, 0, 0});
    SetValue(L"Blob", REG_BINARY, {});
    ASSERT_NE(Read(), before);
    ASSERT_EQ(settings->ImportSettings(InText(path), omitted), S_OK);
    EXPECT_EQ(Read(), before);
    EXPECT_EQ(Mode().dmCopies, 3);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsSpooler, AFileOfOnePrinterServesAnotherOfTheSameDriver) {
    SetMode(DMORIENT_LANDSCAPE, 4);
    ASSERT_EQ(settings->ExportSettings(InText(path), omitted), S_OK);
    const demo::Printer other;
    const Printer target(realSpooler, locks, other.Name());
    ApplySettings(target, DecodeVqs(ReadSettingsFile(path, kMaximumVqsSize)));
    DEVMODEW mode = {};
    std::memcpy(&mode, ReadSettings(target).globalMode->data(), sizeof(mode));
    EXPECT_EQ(mode.dmCopies, 4);
    EXPECT_EQ(std::wstring(mode.dmDeviceName), other.Name().substr(0, CCHDEVICENAME - 1));
}

TEST_F(SettingsSpooler, ResetGivesTheDriversDefaultsAndKeepsTheData) {
    SetValue(L"Darkness", REG_DWORD, {7, 0, 0, 0});
    const Settings fresh = Read();
    SetMode(DMORIENT_LANDSCAPE, 3);
    ASSERT_NE(Read(), fresh);
    const auto names = demo::PrinterNames();
    ASSERT_EQ(settings->ResetSettings(omitted), S_OK);
    EXPECT_EQ(Mode().dmCopies, 1);
    EXPECT_EQ(Mode().dmOrientation, DMORIENT_PORTRAIT);
    EXPECT_EQ(Read(), fresh);
    EXPECT_EQ(demo::PrinterNames(), names);
}

TEST_F(SettingsSpooler, AForeignDriversFileIsRefused) {
    Settings foreign = Read();
    foreign.driver.name += L" II";
    WriteSettingsFile(path, EncodeVqs(foreign));
    EXPECT_EQ(settings->ImportSettings(InText(path), omitted),
              HRESULT_FROM_WIN32(ERROR_UNKNOWN_PRINTER_DRIVER));
    EXPECT_NE(TakeErrorTexts().description.find(printer.Name()), std::wstring::npos);
}

TEST_F(SettingsSpooler, ADeletedPrinterIsReported) {
    demo::RemovePrinter(printer.Name());
    EXPECT_EQ(settings->ExportSettings(InText(path), omitted),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_TRUE(TakeErrorTexts().present);
    EXPECT_EQ(folder.Count(), 0);
}

} // namespace
