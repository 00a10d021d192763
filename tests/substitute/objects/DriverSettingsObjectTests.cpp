// Exporting, importing and resetting as a client sees it, on a spooler in memory.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "automation/Owners.h"
#include "substitute/base/Bytes.h"
#include "substitute/objects/DriverSettingsObject.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/VqsFormat.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

/// The file's bytes, or nothing if it cannot be opened; nobody is kept from anything meanwhile.
std::optional<Bytes> ReadAsOthersDo(const std::wstring& path) {
    const UniqueHandle file =
        OpenExisting(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    if (!file) {
        return std::nullopt;
    }
    Bytes bytes(1u << 20);
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
    bytes.resize(count);
    return bytes;
}

class DriverSettingsObject : public ObjectFixture {
  protected:
    DriverSettingsObject() {
        spooler.printers[L"Label A"].driver = L"Zippy 300";
        spooler.printers[L"Label A"].settings = MakeRichState();
        auto automation = MakeAutomation();
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
        EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK); // outlives its maker
    }
    HRESULT Export() { return settings->ExportSettings(InText(path), LeftOut()); }
    HRESULT Import() { return settings->ImportSettings(InText(path), LeftOut()); }

    TemporaryFolder folder;
    std::wstring path = folder.File(L"label.vqs");
    ComPtr<IDriverSettings> settings;
};

TEST_F(DriverSettingsObject, AnExportComesBackByAnImport) {
    ASSERT_EQ(Export(), S_OK);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    ASSERT_EQ(Import(), S_OK);
    const std::wstring again = folder.File(L"again.vqs");
    ASSERT_EQ(settings->ExportSettings(InText(again), LeftOut()), S_OK);
    const Settings now = DecodeVqs(ReadSettingsFile(again, kMaximumVqsSize));
    EXPECT_EQ(now.values, SettingsOf(MakeRichState()).values);
    EXPECT_EQ(CopiesOf(now.globalMode), 2);
    EXPECT_EQ(CopiesOf(now.userMode), 3);
    EXPECT_EQ(folder.Count(), 2);
    EXPECT_FALSE(TakeErrorTexts().present);
}

TEST_F(DriverSettingsObject, ResetGivesTheDriversDefaults) {
    ASSERT_EQ(settings->ResetSettings(LeftOut()), S_OK);
    EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 1);
}

TEST_F(DriverSettingsObject, AnyOptionalArgumentIsRefused) {
    ASSERT_EQ(Export(), S_OK);
    spooler.printers[L"Label A"].settings = MakeOtherState();
    const Bytes file = ReadSettingsFile(path, kMaximumVqsSize);
    Value number(0);
    Value text(L"");
    Value object(settings.Get());
    Value omitted;
    static_cast<VARIANT&>(omitted) = LeftOut();
    Value reference;
    static_cast<VARIANT&>(reference) = Reference(omitted);
    SCODE code = E_FAIL;
    VARIANT otherError = LeftOut();
    otherError.scode = E_FAIL;
    VARIANT no = {};
    no.vt = VT_BOOL;
    const VARIANT options[] = {number,
                               text,
                               object,
                               no,
                               otherError,
                               Reference(number),
                               Reference(text),
                               Reference(otherError),
                               Reference(reference), // one too many
                               Reference(VT_ERROR, &code),
                               Reference(VT_ERROR, nullptr),
                               Reference(VT_VARIANT, nullptr),
                               Reference(VT_EMPTY, &code)};
    for (std::size_t index = 0; index < std::size(options); ++index) {
        SCOPED_TRACE(index);
        const VARIANT& option = options[index];
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
    EXPECT_EQ(ReferencesTo(*settings), 2u); // ours and the value's
}

TEST_F(DriverSettingsObject, NoValueCountsAsOmittedHoweverALanguageSaysIt) {
    VARIANT empty = {};
    VARIANT null = {};
    null.vt = VT_NULL;
    VARIANT omitted = LeftOut();
    SCODE code = DISP_E_PARAMNOTFOUND;
    VARIANT reference = Reference(VT_ERROR, &code);
    const VARIANT options[] = {empty,
                               null,
                               omitted,
                               Reference(empty),
                               Reference(null),
                               Reference(omitted),
                               Reference(VT_ERROR, &code),
                               Reference(reference)};
    for (std::size_t index = 0; index < std::size(options); ++index) {
        SCOPED_TRACE(index);
        spooler.printers[L"Label A"].settings = MakeRichState();
        EXPECT_EQ(settings->ExportSettings(InText(path), options[index]), S_OK);
        EXPECT_EQ(settings->ResetSettings(options[index]), S_OK);
        EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 1);
        EXPECT_EQ(settings->ImportSettings(InText(path), options[index]), S_OK);
        EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 2);
        std::filesystem::remove(path);
    }
}

TEST_F(DriverSettingsObject, ScriptsMayLeaveTheOptionalArgumentOut) {
    const Value file(path);
    VARIANT empty = {};
    for (const std::vector<VARIANT>& option :
         {std::vector<VARIANT>{}, {LeftOut()}, {empty}, {Reference(empty)}}) {
        SCOPED_TRACE(option.size());
        std::vector<VARIANT> arguments = {file};
        arguments.insert(arguments.end(), option.begin(), option.end());
        spooler.printers[L"Label A"].settings = MakeRichState();
        EXPECT_EQ(Call(*settings, L"ExportSettings", arguments), S_OK);
        EXPECT_EQ(Call(*settings, L"ResetSettings", option), S_OK);
        EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 1);
        EXPECT_EQ(Call(*settings, L"ImportSettings", arguments), S_OK);
        EXPECT_EQ(CopiesOf(spooler.printers[L"Label A"].settings.globalMode), 2);
    }
    EXPECT_EQ(CallNamed(*settings, L"ExportSettings", {0}, {file}), S_OK);
    EXPECT_EQ(Call(*settings, L"ExportSettings", {}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(*settings, L"ExportSettings", {LeftOut(), LeftOut()}), DISP_E_PARAMNOTOPTIONAL);
    Told told;
    const Value number(1);
    EXPECT_EQ(Call(*settings, L"ResetSettings", {number}, nullptr, &told), DISP_E_EXCEPTION);
    EXPECT_EQ(told.exception.scode, E_INVALIDARG);
    TakeErrorTexts();
}

TEST_F(DriverSettingsObject, APathThatIsNotAbsoluteIsRefused) {
    for (const wchar_t* const relative :
         {L"", L"label.vqs", L"a\\label.vqs", L"C:label.vqs", L"\\label.vqs"}) {
        EXPECT_EQ(settings->ExportSettings(InText(relative), LeftOut()),
                  HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
        EXPECT_NE(TakeErrorTexts().description.find(L"the path is not absolute"), std::wstring::npos);
        EXPECT_EQ(settings->ImportSettings(InText(relative), LeftOut()),
                  HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    }
}

TEST_F(DriverSettingsObject, AnExportThatFailsAtAnyCallLeavesTheOldFile) {
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

TEST_F(DriverSettingsObject, SettingsThatNoFileMayHoldLeaveTheOldFile) {
    ASSERT_EQ(Export(), S_OK);
    const Bytes file = ReadSettingsFile(path, kMaximumVqsSize);
    spooler.printers[L"Label A"].settings.keys[L"PrinterDriverData"][L"Odd"] = {99, {}}; // no such type
    EXPECT_EQ(Export(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(ReadSettingsFile(path, kMaximumVqsSize), file);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(DriverSettingsObject, AnImportThatFailsAtAnyCallSaysSoAndChangesNothing) {
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

TEST_F(DriverSettingsObject, BadFilesAreRefusedAndNothingIsAskedOfThePrinter) {
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
    EXPECT_EQ(settings->ImportSettings(nullptr, LeftOut()), HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    EXPECT_EQ(settings->ExportSettings(nullptr, LeftOut()), HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
    EXPECT_EQ(spooler.printers[L"Label A"].settings, MakeRichState());
}

TEST_F(DriverSettingsObject, ADeviceIsNeitherWrittenNorRead) {
    for (const std::wstring& device : {std::wstring(L"\\\\.\\C:"), std::wstring(L"//./PhysicalDrive0"),
                                       L"\\\\.\\" + path, folder.File(L"NUL")}) {
        SCOPED_TRACE(device);
        EXPECT_EQ(settings->ExportSettings(InText(device), LeftOut()),
                  HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
        EXPECT_EQ(settings->ImportSettings(InText(device), LeftOut()),
                  HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
        EXPECT_NE(TakeErrorTexts().description.find(L"is no file"), std::wstring::npos);
    }
    EXPECT_EQ(folder.Count(), 0);
}

TEST_F(DriverSettingsObject, TwoExportsAtOnceLeaveOneWholeFile) {
    spooler.printers[L"Label B"].driver = L"Zippy 300";
    spooler.printers[L"Label B"].settings = MakeOtherState();
    const auto other = MakeAutomation();
    ASSERT_EQ(other->PutPrinterName(InText(L"Label B")), S_OK);
    ComPtr<IDriverSettings> otherSettings;
    ASSERT_EQ(other->GetSettings(otherSettings.Put()), S_OK);

    const auto bytesOf = [&](const wchar_t* printer, std::size_t fontSize) {
        FakeSpooler::State& state = spooler.printers[printer].settings;
        // Large, so that writing it takes its time.
        state.keys[kDriverDataKey][L"Font"] = {REG_BINARY, Bytes(fontSize, 1)};
        return EncodeVqs(SettingsOf(state));
    };
    const Bytes first = bytesOf(L"Label A", 400'000);
    const Bytes second = bytesOf(L"Label B", 300'000);
    ASSERT_EQ(Export(), S_OK);
    std::atomic<int> exporting = 2;
    const auto exportOften = [&](IDriverSettings& exported) {
        for (int round = 0; round < 12; ++round) {
            EXPECT_EQ(exported.ExportSettings(InText(path), LeftOut()), S_OK);
        }
        --exporting;
    };
    std::thread one(exportOften, std::ref(*settings.Get()));
    std::thread two(exportOften, std::ref(*otherSettings.Get()));
    while (exporting > 0) { // what a reader finds is one whole export, too, or for a moment nothing
        if (const std::optional<Bytes> bytes = ReadAsOthersDo(path)) {
            EXPECT_TRUE(*bytes == first || *bytes == second) << bytes->size();
        }
    }
    one.join();
    two.join();
    const Bytes left = ReadSettingsFile(path, kMaximumVqsSize);
    EXPECT_TRUE(left == first || left == second);
    EXPECT_EQ(folder.Count(), 1);
}

} // namespace
