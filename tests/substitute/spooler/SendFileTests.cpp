// Files on their way to a printer: bytes, blocks, data types, and what happens when something fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/Texts.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

using Call = FakeSpooler::Call;

class SendFile : public ObjectFixture {
  protected:
    SendFile() {
        spooler.printers[L"Label A"];
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }
    HRESULT Send(const std::wstring& path, const std::wstring& name = L"") {
        return automation->SendFile(InText(path), InText(name));
    }
    /// What the path is refused with; nothing may have reached the spooler.
    std::wstring RefusalOf(const std::wstring& path, DWORD error) {
        EXPECT_EQ(Send(path), HRESULT_FROM_WIN32(error));
        EXPECT_TRUE(spooler.journal.empty());
        EXPECT_EQ(spooler.open, 1);
        return TakeErrorTexts().description;
    }

    ComPtr<DriverAutomationObject> automation = MakeAutomation();
};

std::string EveryByte(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t index = 0; index < count; ++index) {
        bytes[index] = static_cast<char>(index * 7 + index / 256);
    }
    return bytes;
}

TEST_F(SendFile, TheBytesAreOneRawJobCalledAsTheFile) {
    const std::string bytes = EveryByte(1'000) + "\x1A\r\n\n";
    const TemporaryFile file(bytes);
    EXPECT_EQ(Send(file.Path()), S_OK);
    EXPECT_EQ(spooler.printed, bytes);
    const std::wstring name = std::filesystem::path(file.Path()).filename().wstring();
    EXPECT_EQ(spooler.journal,
              (std::vector<std::wstring>{L"RAW job " + name, L"page", L"page's end", L"job's end"}));
    EXPECT_EQ(spooler.open, 1);
}

TEST_F(SendFile, TheSecondArgumentIsTheDocumentsName) {
    const TemporaryFile file("x");
    EXPECT_EQ(Send(file.Path(), L"Parcels"), S_OK);
    EXPECT_EQ(spooler.journal.front(), L"RAW job Parcels");
    EXPECT_EQ(automation->SendFile(InText(file.Path()), nullptr), S_OK);
    EXPECT_EQ(spooler.printed, "xx");
}

TEST_F(SendFile, EveryKindOfAbsolutePathIsTaken) {
    const TemporaryFile file("x");
    std::wstring slashed = file.Path();
    std::replace(slashed.begin(), slashed.end(), L'\\', L'/');
    const std::wstring name = std::filesystem::path(file.Path()).filename().wstring();
    for (const std::wstring& path : {slashed, L"\\\\?\\" + file.Path()}) {
        spooler.journal.clear();
        EXPECT_EQ(Send(path), S_OK);
        EXPECT_EQ(spooler.journal.front(), L"RAW job " + name);
    }
}

TEST_F(SendFile, GoesInBlocksWhateverTheSize) {
    for (const std::size_t size : {65'535, 65'536, 65'537, 1'000'000}) {
        SCOPED_TRACE(size);
        spooler.printed.clear();
        const std::string bytes = EveryByte(size);
        const TemporaryFile file(bytes);
        EXPECT_EQ(Send(file.Path()), S_OK);
        EXPECT_TRUE(spooler.printed == bytes);
        EXPECT_LE(spooler.largestWrite, 65'536u);
    }
}

TEST_F(SendFile, ASpoolerThatTakesLessIsGivenTheRest) {
    spooler.mostAtOnce = 300;
    const std::string bytes = EveryByte(1'000);
    const TemporaryFile file(bytes);
    EXPECT_EQ(Send(file.Path()), S_OK);
    EXPECT_EQ(spooler.printed, bytes);
    spooler.mostAtOnce = 0; // says that it worked, and takes nothing
    EXPECT_EQ(Send(file.Path()), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
    EXPECT_EQ(spooler.journal.back(), L"deleted");
}

TEST_F(SendFile, AnXpsDriverGetsItsOwnDataType) {
    const TemporaryFile file("x");
    const struct {
        DWORD level, attributes;
        const wchar_t* journal;
    } rows[] = {
        {8, 0x2, L"XPS_PASS job d"},
        {8, 0x1D, L"RAW job d"},
        {6, 0x2, L"RAW job d"}, // no such attributes at that level
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.journal);
        spooler.journal.clear();
        spooler.driverLevel = row.level;
        spooler.driver.attributes = row.attributes;
        EXPECT_EQ(Send(file.Path(), L"d"), S_OK);
        EXPECT_EQ(spooler.journal.front(), row.journal);
    }
}

TEST_F(SendFile, AJobThatFailsHalfWayIsDeleted) {
    const TemporaryFile file(EveryByte(100'000)); // two blocks
    const struct {
        Call step;
        bool started;
        const wchar_t* reason;
    } rows[] = {
        {Call::StartDocument, false, L"starting a RAW job failed: "},
        {Call::StartPage, true, L"starting the job's page failed: "},
        {Call::Write, true, L"writing to the job failed: "},
        {Call::EndPage, true, L"ending the job's page failed: "},
        {Call::EndDocument, true, L"ending the job failed: "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reason);
        spooler.journal.clear();
        spooler.failing = row.step;
        EXPECT_EQ(Send(file.Path()), HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
        EXPECT_TRUE(BeginsWith(TakeErrorTexts().description,
                               std::wstring(L"SendFile on printer \"Label A\": ") + row.reason));
        EXPECT_EQ(std::count(spooler.journal.begin(), spooler.journal.end(), L"deleted"),
                  row.started ? 1 : 0);
        EXPECT_EQ(spooler.printed, "");
        EXPECT_EQ(spooler.Unfinished(), "");
        EXPECT_EQ(spooler.open, 1);
    }
}

TEST_F(SendFile, ADriverThatDoesNotTellOfItselfIsNoReasonToFail) {
    const TemporaryFile file("x");
    spooler.failing = Call::GetDriver;
    EXPECT_EQ(Send(file.Path()), S_OK);
    EXPECT_EQ(spooler.printed, "x");
}

TEST_F(SendFile, AJobWhoseEndFailedAfterItsBytesWentOutIsTakenOutOfTheQueue) {
    const TemporaryFile file("x");
    spooler.failing = Call::EndDocument;
    spooler.endLosesDocument = true;
    EXPECT_EQ(Send(file.Path()), HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
    EXPECT_TRUE(spooler.queue.empty());
    const std::wstring description = TakeErrorTexts().description;
    EXPECT_NE(description.find(L"ending the job failed: "), std::wstring::npos);
    EXPECT_EQ(description.find(L"could not be deleted"), std::wstring::npos);
}

TEST_F(SendFile, AJobThatCannotBeDeletedIsNamed) {
    const TemporaryFile file("x");
    spooler.endLosesDocument = true;
    spooler.before = [&](Call call) {
        spooler.failing = call == Call::EndDocument || call == Call::DeleteJob ? call : Call::None;
        spooler.failure = call == Call::DeleteJob ? ERROR_ACCESS_DENIED : ERROR_PRINT_CANCELLED;
    };
    EXPECT_EQ(Send(file.Path()), HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
    EXPECT_EQ(spooler.queue.size(), 1u);
    EXPECT_NE(TakeErrorTexts().description.find(L"; job 1 could not be deleted: "), std::wstring::npos);
}

TEST_F(SendFile, WhatIsNoFileWithBytesIsRefusedBeforeAnyJob) {
    const TemporaryFile empty;
    const std::wstring place = L"SendFile on printer \"Label A\": ";
    EXPECT_TRUE(BeginsWith(RefusalOf(empty.Path(), ERROR_INVALID_DATA),
                           place + L"the file \"" + empty.Path() + L"\" is empty: "));
    EXPECT_TRUE(BeginsWith(RefusalOf(L"C:\\no such file", ERROR_FILE_NOT_FOUND),
                           place + L"opening the file \"C:\\no such file\" failed: "));
    EXPECT_TRUE(BeginsWith(RefusalOf(L"C:\\windows", ERROR_ACCESS_DENIED),
                           place + L"opening the file \"C:\\windows\" failed: "));
    const TemporaryFile file("x");
    for (const std::wstring& device : {std::wstring(L"\\\\.\\NUL"), std::wstring(L"\\\\.\\C:"),
                                       std::wstring(L"//./C:"), L"\\\\.\\" + file.Path()}) {
        EXPECT_TRUE(
            BeginsWith(RefusalOf(device, ERROR_BAD_FILE_TYPE), place + L"\"" + device + L"\" is no file: "));
    }
}

TEST_F(SendFile, APathOfSomeFolderThatTheServerCannotKnowIsRefused) {
    for (const wchar_t* const path : {L"", L"label.prn", L"sub\\label.prn", L"C:label.prn", L"\\label.prn"}) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(BeginsWith(RefusalOf(path, ERROR_BAD_PATHNAME),
                               std::wstring(L"SendFile on printer \"Label A\": the file's path \"") + path +
                                   L"\" is not absolute: "));
    }
}

TEST_F(SendFile, AFileThatSomebodyWritesToIsRefused) {
    const TemporaryFile file("half a la");
    UniqueHandle writer = OpenExisting(file.Path(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(writer);
    RefusalOf(file.Path(), ERROR_SHARING_VIOLATION);
    writer.reset();
    EXPECT_EQ(Send(file.Path()), S_OK);
}

TEST_F(SendFile, NothingIsSentBeforeBinding) {
    const TemporaryFile file("x");
    EXPECT_EQ(MakeAutomation()->SendFile(InText(file.Path()), nullptr), E_UNEXPECTED);
}

} // namespace
