// A driver's version and detail.
#include <gtest/gtest.h>

#include <string>

#include "Version.h"
#include "automation/Owners.h"
#include "substitute/spooler/DriverVersion.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/ProcessRun.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/Texts.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

FILETIME DateOf(WORD year, WORD month, WORD day) {
    SYSTEMTIME date = {};
    date.wYear = year;
    date.wMonth = month;
    date.wDay = day;
    FILETIME time = {};
    SystemTimeToFileTime(&date, &time);
    return time;
}

TEST(DriverVersion, IsFourPartsOfSixteenBits) {
    const struct {
        DWORDLONG version;
        const wchar_t* text;
    } rows[] = {
        {4503600127348640, L"16.0.7629.4000"},
        {2814750890000385, L"10.0.17134.1"},
        {844424930656256, L"3.0.8.0"},
        {1, L"0.0.0.1"},
        {~DWORDLONG(0), L"65535.65535.65535.65535"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DriverVersionText({.version = row.version, .date = {}, .provider = L"", .path = L""}),
                  row.text);
    }
}

TEST(DriverVersion, ADriverWithoutOneHasThatOfItsFile) {
    const std::wstring program = ProgramPath(L"kemba-dal.exe");
    EXPECT_EQ(DriverVersionText({.version = 0, .date = {}, .provider = L"", .path = program}),
              L"" KEMBA_VERSION_TEXT L".0");
    EXPECT_EQ(DriverVersionText({.version = 1, .date = {}, .provider = L"", .path = program}), L"0.0.0.1");
}

TEST(DriverVersion, IsEmptyWhereNobodyTells) {
    for (const wchar_t* const path : {L"", L"C:\\no such driver.dll", L"C:\\windows\\win.ini"}) {
        EXPECT_EQ(DriverVersionText({.version = 0, .date = {}, .provider = L"", .path = path}), L"");
    }
}

TEST(DriverVersion, TheDetailIsProviderAndDate) {
    const FILETIME date = DateOf(2021, 3, 4);
    EXPECT_EQ(DriverDetailText({.version = 0, .date = date, .provider = L"Zippy", .path = L""}),
              L"Zippy, 2021-03-04");
    EXPECT_EQ(DriverDetailText({.version = 0, .date = {}, .provider = L"Zippy", .path = L""}), L"Zippy");
    EXPECT_EQ(DriverDetailText({.version = 0, .date = date, .provider = L"", .path = L""}), L"2021-03-04");
    EXPECT_EQ(DriverDetailText({.version = 0, .date = {}, .provider = L"", .path = L""}), L"");
}

class DriverVersionObject : public ObjectFixture {
  protected:
    DriverVersionObject() {
        spooler.printers[L"Label A"];
        spooler.driver.version = 2814750890000385;
        spooler.driver.provider = L"Zippy";
        spooler.driver.date = DateOf(2021, 3, 4);
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }
    ComPtr<DriverAutomationObject> automation = MakeAutomation();
    std::wstring text;
};

TEST_F(DriverVersionObject, BothLevelsOfDriverRecordsServe) {
    for (const DWORD level : {8u, 6u}) {
        SCOPED_TRACE(level);
        spooler.driverLevel = level;
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersion, text), S_OK);
        EXPECT_EQ(text, L"10.0.17134.1");
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersionDetail, text),
                  S_OK);
        EXPECT_EQ(text, L"Zippy, 2021-03-04");
    }
}

TEST_F(DriverVersionObject, FailuresAreReported) {
    spooler.failing = FakeSpooler::Call::GetDriver;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersion, text),
              HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
    EXPECT_TRUE(
        BeginsWith(TakeErrorTexts().description,
                   L"GetDriverVersion on printer \"Label A\": asking the spooler for the driver failed: "));
    spooler.failing = FakeSpooler::Call::None;
    spooler.driverLevel = 5;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersionDetail, text),
              HRESULT_FROM_WIN32(ERROR_INVALID_LEVEL));
    EXPECT_EQ(MakeAutomation()->GetDriverVersionDetail(nullptr), E_POINTER);
}

} // namespace
