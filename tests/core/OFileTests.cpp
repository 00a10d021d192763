// Files: open modes, sharing, positions, buffering, and the closed file.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/OFile.h"
#include "tests/core/VirtualSlots.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"

using namespace kit;

namespace {

std::uint32_t WriteBytes(OFile& file, const std::string& bytes) {
    return file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

/// Exit status of another program that shows the file.
DWORD StatusOfShowing(const std::wstring& path) {
    const UniqueHandle process = StartProgram(L"cmd.exe /c type \"" + path + L"\" >nul");
    DWORD status = MAXDWORD;
    WaitForSingleObject(process.get(), INFINITE);
    GetExitCodeProcess(process.get(), &status);
    return status;
}

/// Whether another user of the file gets the access that it asks for, sharing everything itself.
bool CanBeOpened(const TemporaryFile& file, DWORD access) {
    return OpenExisting(file.Path(), access, FILE_SHARE_READ | FILE_SHARE_WRITE) != nullptr;
}

TEST(OFile, HasItsOperationsInOrder) {
    EXPECT_EQ(SlotOf(&OFile::WriteRaw), 2);
    EXPECT_EQ(SlotOf(&OFile::Write), 3);
    EXPECT_EQ(SlotOf(&OFile::Flush), 4);
    EXPECT_EQ(SlotOf(&OFile::Open), 5);
    EXPECT_EQ(SlotOf(&OFile::Close), 6);
    EXPECT_EQ(SlotOf(&OFile::Seek), 7);
    EXPECT_EQ(SlotOf(&OFile::GetSize), 8);
    EXPECT_EQ(SlotOf(&OFile::Read), 9);
}

TEST(OFile, WhenClosedAnswersNothing) {
    OFile file;
    char byte = 'x';
    EXPECT_EQ(file.GetSize(), 0U);
    EXPECT_EQ(file.Seek(5, FILE_BEGIN), 0U);
    EXPECT_EQ(file.Read(&byte, 1), 0U);
    EXPECT_EQ(file.WriteRaw(&byte, 1), 0U);
    file.Close();

    const TemporaryFile temporary("abc");
    ASSERT_TRUE(file.Open(temporary.Path().c_str(), OFile::kRead));
    file.Close();
    EXPECT_EQ(file.GetSize(), 0U);
    EXPECT_EQ(file.Seek(1, FILE_BEGIN), 0U);
    EXPECT_EQ(file.Read(&byte, 1), 0U);
    EXPECT_EQ(byte, 'x');
}

TEST(OFile, OpensNoMissingFile) {
    const TemporaryFolder folder;
    const OString missing = folder.File(L"missing").c_str();
    OFile file;
    for (const std::uint32_t mode : {0x0000U, 0x0001U, 0x2000U, 0x2001U, 0x0FF1U}) {
        SCOPED_TRACE(mode);
        EXPECT_FALSE(file.Open(missing, mode));
        EXPECT_EQ(file.GetSize(), 0U);
    }
    EXPECT_EQ(file.Name(), missing);
    EXPECT_FALSE(OFile::Exists(missing));
}

TEST(OFile, MakesAMissingFileWhenAsked) {
    for (const std::uint32_t mode : {0x1000U, 0x1001U, 0x3001U}) {
        SCOPED_TRACE(mode);
        const TemporaryFolder folder;
        OFile file;
        EXPECT_TRUE(file.Open(folder.File(L"made").c_str(), mode));
        EXPECT_EQ(folder.Count(), 1);
    }
}

TEST(OFile, OpenedToReadCannotBeWritten) {
    const TemporaryFile temporary("abc");
    for (const std::uint32_t mode : {0x0000U, 0x1000U, 0x2000U, 0x3000U}) {
        SCOPED_TRACE(mode);
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), mode));
        EXPECT_EQ(file.WriteRaw("x", 1), 0U);
        char bytes[8] = {};
        EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 3U);
        EXPECT_STREQ(bytes, "abc");
    }
    EXPECT_EQ(temporary.Read(), "abc");
}

TEST(OFile, OpenedToWriteIsTruncatedAtOnce) {
    for (const std::uint32_t mode : {0x0001U, 0x1001U}) {
        SCOPED_TRACE(mode);
        const TemporaryFile temporary("before");
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), mode));
        EXPECT_EQ(temporary.Read(), "");
        EXPECT_EQ(WriteBytes(file, "new"), 3U);
        file.Close();
        EXPECT_EQ(temporary.Read(), "new");
    }
}

TEST(OFile, OpenedToAppendWritesBehindWhatIsThere) {
    for (const std::uint32_t mode : {0x2001U, 0x3001U}) {
        SCOPED_TRACE(mode);
        const TemporaryFile temporary("before");
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), mode));
        EXPECT_EQ(temporary.Read(), "before");
        WriteBytes(file, " after");
        file.Close();
        EXPECT_EQ(temporary.Read(), "before after");
    }
}

TEST(OFile, OpenedToWriteCanBeReadAsWell) {
    const TemporaryFile temporary("abc");
    OFile file;
    ASSERT_TRUE(file.Open(temporary.Path().c_str(), 0x2001));
    EXPECT_EQ(file.Seek(1, FILE_BEGIN), 1U);
    char bytes[8] = {};
    EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 2U);
    EXPECT_STREQ(bytes, "bc");
}

TEST(OFile, SharesAsItsModeSays) {
    const struct {
        std::uint32_t mode;
        bool reads;
        bool writes;
    } rows[] = {
        {0x0010, false, false}, {0x0020, true, false}, {0x0030, false, true}, {0x0000, true, true},
        {0x0040, true, true},   {0x0050, true, true},  {0x0080, true, true},  {0x00F0, true, true},
        {0x0011, false, false}, {0x0021, true, false}, {0x0031, false, true}, {0x0001, true, true},
    };
    const TemporaryFile temporary("abc");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), row.mode));
        EXPECT_EQ(CanBeOpened(temporary, GENERIC_READ), row.reads);
        EXPECT_EQ(CanBeOpened(temporary, GENERIC_WRITE), row.writes);
        EXPECT_EQ(OFile::Exists(temporary.Path().c_str()), row.reads);
        file.Close();
        EXPECT_TRUE(CanBeOpened(temporary, GENERIC_READ | GENERIC_WRITE));
    }
}

TEST(OFile, SharesWithOtherProcessesAsItsModeSays) {
    const struct {
        std::uint32_t mode;
        bool reads;
    } rows[] = {{0x0010, false}, {0x0020, true}, {0x0030, false}, {0x0000, true}};
    const TemporaryFile temporary("abc");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), row.mode));
        EXPECT_EQ(StatusOfShowing(temporary.Path()), row.reads ? 0U : 1U);
    }
}

TEST(OFile, BuffersUntilItIsClosed) {
    const TemporaryFile temporary;
    {
        OFile file;
        ASSERT_TRUE(file.Open(temporary.Path().c_str(), 0x1001));
        WriteBytes(file, "abc");
        EXPECT_EQ(temporary.Read(), "");
        EXPECT_EQ(file.GetSize(), 0U);
        EXPECT_EQ(file.Flush(), 3U);
        EXPECT_EQ(temporary.Read(), "abc");
        EXPECT_EQ(file.GetSize(), 3U);
        WriteBytes(file, "def");
    }
    EXPECT_EQ(temporary.Read(), "abcdef");
}

TEST(OFile, FlushesBeforeItMoves) {
    const TemporaryFile temporary;
    OFile file;
    ASSERT_TRUE(file.Open(temporary.Path().c_str(), 0x1001));
    WriteBytes(file, "abcdef");
    EXPECT_EQ(file.Seek(2, FILE_BEGIN), 2U);
    EXPECT_EQ(temporary.Read(), "abcdef");
    EXPECT_EQ(file.Seek(1, FILE_CURRENT), 3U);
    WriteBytes(file, "X");
    EXPECT_EQ(file.Seek(-1, FILE_END), 5U);
    EXPECT_EQ(temporary.Read(), "abcXef");
}

TEST(OFile, OpenedAgainClosesWhatWasOpen) {
    const TemporaryFile first;
    OFile file;
    ASSERT_TRUE(file.Open(first.Path().c_str(), 0x1011));
    WriteBytes(file, "first");
    EXPECT_FALSE(file.Open(OString(L"c:\\no such folder\\no such file"), OFile::kRead));
    EXPECT_EQ(first.Read(), "first");
    EXPECT_EQ(file.GetSize(), 0U);
}

TEST(OFile, ExistsWhenItCanBeOpenedToRead) {
    const TemporaryFile temporary("abc");
    EXPECT_TRUE(OFile::Exists(temporary.Path().c_str()));
    EXPECT_TRUE(CanBeOpened(temporary, GENERIC_READ | GENERIC_WRITE)); // it was closed again
    EXPECT_EQ(temporary.Read(), "abc");
    EXPECT_FALSE(OFile::Exists("C:\\"));
    EXPECT_FALSE(OFile::Exists(""));
}

TEST(OFile, ExistsThoughAnotherWritesIt) {
    const TemporaryFile temporary("abc");
    OFile writer;
    ASSERT_TRUE(writer.Open(temporary.Path().c_str(), 0x2001));
    EXPECT_TRUE(OFile::Exists(temporary.Path().c_str()));
}

TEST(OFile, MayHaveANameOutsideTheCodePage) {
    const TemporaryFolder folder;
    const std::wstring path = folder.File(L"\x30BD\x4E2D");
    OFile file;
    EXPECT_TRUE(file.Open(path.c_str(), 0x1001));
    file.Close();
    EXPECT_TRUE(OFile::Exists(path.c_str()));
    EXPECT_EQ(folder.Count(), 1);
}

} // namespace
