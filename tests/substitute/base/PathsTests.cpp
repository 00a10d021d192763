// Paths as the system takes them; mostly decisions on texts alone.
#include <gtest/gtest.h>

#include <utility>

#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "tests/substitute/FailureOf.h"

using namespace kemba::substitute;
using namespace kit;
using namespace std::string_literals;

namespace {

TEST(Paths, AnAbsoluteOneDependsOnNobodysFolder) {
    for (const wchar_t* const path : {L"C:\\a", L"c:/a", L"C:\\", L"\\\\server\\share\\a",
                                      L"//server/share/a", L"\\/a", L"\\\\?\\C:\\a"}) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(IsAbsolutePath(path));
    }
    for (const wchar_t* const path : {L"", L"a", L"\\a", L"/a", L"C:", L"C:a", L"a\\C:\\a", L"\\??\\C:\\a"}) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(IsAbsolutePath(path));
    }
}

TEST(Paths, DevicesAreToldFromFiles) {
    const struct {
        const wchar_t* path;
        bool isDevice;
    } rows[] = {
        {L"C:\\folder\\a.vqs", false},
        {L"\\\\server\\share\\a.vqs", false},
        {L"\\\\server\\.\\a.vqs", false},
        {L".\\a.vqs", false},
        {L"\\.\\C:", false},
        {L"", false},
        {L"\\\\", false},
        {L"\\\\.\\C:", true},
        {L"\\\\.\\c:\\folder\\a.vqs", true},
        {L"\\\\.\\PhysicalDrive0", true},
        {L"\\\\.\\NUL", true},
        {L"\\\\.\\COM10", true},
        {L"\\\\.\\pipe\\a", true},
        {L"\\\\.\\UNC\\server\\share\\a.vqs", true},
        {L"\\\\.\\", true},
        {L"\\\\.", true},
        {L"//./C:", true},
        {L"\\/.\\C:", true},
        {L"//./PhysicalDrive0", true},
        {L"\\\\\\.\\C:", true},
        {L"\\\\?\\C:\\a.vqs", false},
        {L"\\\\?\\z:\\a.vqs", false},
        {L"//?/C:/a.vqs", false},
        {L"\\\\?\\UNC\\server\\share\\a.vqs", false},
        {L"\\\\?\\unc\\server\\share\\a.vqs", false},
        {L"\\\\?\\C:", true},
        {L"\\\\?\\C:a.vqs", true},
        {L"\\\\?\\1:\\a.vqs", true},
        {L"\\\\?\\CC:\\a.vqs", true},
        {L"\\\\?\\\\C:\\a.vqs", true},
        {L"\\\\?\\UNC", true},
        {L"\\\\?\\UNCLE\\a.vqs", true},
        {L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\a.vqs", true},
        {L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}\\a.vqs", true},
        {L"\\\\?\\PhysicalDrive0", true},
        {L"//?/GLOBALROOT/Device/Null", true},
        {L"\\\\?\\", true},
        {L"\\\\?", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(IsDevicePath(row.path), row.isDevice);
    }
}

TEST(Paths, AStreamIsWhatFollowsAColonThatIsNoDrives) {
    for (const wchar_t* const path :
         {L"C:\\a.vqs:s", L"C:\\a.vqs::$DATA", L"C:\\a:s\\b", L"C:\\:s", L"C:\\a:", L"\\\\server\\share\\a:s",
          L"\\\\?\\C:\\a:s", L"\\\\?\\UNC\\server\\share\\a:s"}) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(HasStreamPart(path));
    }
    for (const wchar_t* const path :
         {L"C:\\a.vqs", L"\\\\server\\share\\a", L"\\\\?\\C:\\a", L"\\\\?\\UNC\\server\\share\\a"}) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(HasStreamPart(path));
    }
}

TEST(Paths, AFullOneIsAsTheSystemReadsIt) {
    EXPECT_EQ(FullPath(L"C:/a/./b/../c.vqs"), L"C:\\a\\c.vqs");
    EXPECT_EQ(FullPath(L"//./C:"), L"\\\\.\\C:");
    const std::wstring deep = L"C:\\" + std::wstring(200, L'a') + L"\\" + std::wstring(200, L'b');
    EXPECT_EQ(FullPath(deep), deep);
    EXPECT_EQ(FullPath(L""), L"");
}

TEST(Paths, WhatCanBeNoFileIsRefused) {
    const std::pair<std::wstring, DWORD> rows[] = {
        {L"", ERROR_INVALID_NAME},
        {L"C:\\a\0b"s, ERROR_INVALID_NAME},
        {L"NUL", ERROR_BAD_FILE_TYPE},
        {L"C:\\folder\\NUL", ERROR_BAD_FILE_TYPE},
        {L"C:\\folder\\CON", ERROR_BAD_FILE_TYPE},
        {L"C:/folder/lpt1", ERROR_BAD_FILE_TYPE},
        {L"\\\\.\\C:", ERROR_BAD_FILE_TYPE},
        {L"\\\\?\\GLOBALROOT\\Device\\Null", ERROR_BAD_FILE_TYPE},
    };
    for (const auto& [path, error] : rows) {
        SCOPED_TRACE(path);
        const Failure failure = FailureOf([&] { NeedFilePath(path); });
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(error));
        EXPECT_NE(failure.reason.find(L"\"" + std::wstring(path.c_str()) + L"\""), std::wstring::npos);
    }
    EXPECT_NO_THROW(NeedFilePath(L"C:\\folder\\NULL"));
    EXPECT_NO_THROW(NeedFilePath(L"a"));
}

TEST(Paths, ComeApartAtTheLastSeparator) {
    const std::wstring_view rows[][2] = {{L"C:\\a\\", L"b.vqs"},
                                         {L"C:\\a/", L"b"},
                                         {L"C:\\", L"b"},
                                         {L"", L"b"},
                                         {L"\\\\server\\share\\", L""}};
    for (const auto& [folder, name] : rows) {
        SCOPED_TRACE(std::wstring(name));
        const std::wstring path = std::wstring(folder) + std::wstring(name);
        EXPECT_EQ(FolderOf(path), folder);
        EXPECT_EQ(FileNameOf(path), name);
    }
}

TEST(Paths, ATemporaryNameIsShortAndInTheSameFolder) {
    EXPECT_EQ(TemporaryNameBeside(L"C:\\a b\\label.vqs", 0x2F, L"tmp"), L"C:\\a b\\~ke002F.tmp");
    EXPECT_EQ(TemporaryNameBeside(L"\\\\server\\share/x", 0xABCD1234, L"old"),
              L"\\\\server\\share/~ke1234.old");
    EXPECT_EQ(TemporaryNameBeside(std::wstring(L"C:\\") + std::wstring(249, L'x'), ~0u, L"tmp"),
              L"C:\\~keFFFF.tmp");
}

TEST(Paths, TheProgramsIsThatOfTheRunningOne) {
    EXPECT_EQ(FileNameOf(ProgramPath()), L"substitute_tests.exe");
    EXPECT_NE(GetFileAttributesW(ProgramPath().c_str()), INVALID_FILE_ATTRIBUTES);
}

} // namespace
