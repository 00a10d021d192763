// Paths as the system takes them; mostly decisions on texts alone.
#include <gtest/gtest.h>

#include <string>
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

constexpr wchar_t kDrivers[] = LR"(C:\Windows\system32\spool\DRIVERS\x64)";
constexpr wchar_t kShare[] = LR"(\\server\print$\x64)";

struct Row {
    const wchar_t* path;
    const wchar_t* folder;
};

TEST(Paths, WhatLiesBelowAFolder) {
    constexpr Row kRows[] = {
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\3\label.dll)", kDrivers},
        {LR"(c:\WINDOWS\System32\Spool\drivers\X64\3\LABEL.DLL)", kDrivers},
        {LR"(C:/Windows/system32/spool/DRIVERS/x64/3/label.dll)", kDrivers},
        {LR"(C:\Windows\\system32\spool\DRIVERS\x64\\3\label.dll)", kDrivers},
        {LR"(\\?\C:\Windows\system32\spool\DRIVERS\x64\3\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\3\label.dll)",
         LR"(\\?\C:\Windows\system32\spool\DRIVERS\x64)"},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\3\label.dll)",
         LR"(C:\Windows\system32\spool\DRIVERS\x64\)"},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\.3\..label)", kDrivers},
        {LR"(\\server\print$\x64\3\label.dll)", kShare},
        {LR"(//SERVER/print$/x64/3/label.dll)", kShare},
        {LR"(\\?\UNC\server\print$\x64\3\label.dll)", kShare},
        {LR"(\\?\unc\server\print$\x64\3\label.dll)", kShare},
    };
    for (const auto& [path, folder] : kRows) {
        EXPECT_TRUE(IsBelowFolder(path, folder)) << testing::PrintToString(std::wstring(path));
    }
}

TEST(Paths, WhatDoesNotLieBelowIt) {
    constexpr Row kRows[] = {
        {LR"(\\server\print$\x64\3\label.dll)", kDrivers},
        {LR"(D:\Windows\system32\spool\DRIVERS\x64\3\label.dll)", kDrivers},
        {LR"(C:\Users\Public\label.dll)", kDrivers},
        // the folder itself, one above it, others whose names begin alike
        {kDrivers, kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64.old\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x6\label.dll)", kDrivers},
        // ways out, and names that Windows reads otherwise
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\..\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\3\..\..\..\label.dll)", kDrivers},
        {LR"(C:/Windows/system32/spool/DRIVERS/x64/../label.dll)", kDrivers},
        {LR"(\\?\C:\Windows\system32\spool\DRIVERS\x64\../label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\.\label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\.. \label.dll)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\label.dll.)", kDrivers},
        {LR"(C:\Windows\system32\spool\DRIVERS\x64\label.dll:hidden)", kDrivers},
        // paths that depend on where somebody is, or name devices
        {L"", kDrivers},
        {L"label.dll", kDrivers},
        {LR"(3\label.dll)", kDrivers},
        {LR"(C:label.dll)", kDrivers},
        {LR"(C:Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        {LR"(\Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        {LR"(\\.\C:\Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        {LR"(\\?\UNC\C:\Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        {LR"(\\?\GLOBALROOT\Device\HarddiskVolume1\label.dll)", kDrivers},
        {LR"(\\?\Windows\system32\spool\DRIVERS\x64\label.dll)", kDrivers},
        // a server's share and a drive's folder of the same names
        {LR"(\\print$\x64\3\label.dll)", LR"(C:\print$\x64)"},
        {LR"(C:\server\print$\x64\label.dll)", kShare},
        {LR"(\\other\print$\x64\3\label.dll)", kShare},
        // no folder that could be asked for
        {LR"(C:\label.dll)", L""},
        {LR"(C:\label.dll)", LR"(C:\)"},
        {LR"(C:\drivers\x64\label.dll)", L"drivers"},
        {LR"(C:\drivers\..\x64\label.dll)", LR"(C:\drivers\..)"},
    };
    for (const auto& [path, folder] : kRows) {
        EXPECT_FALSE(IsBelowFolder(path, folder)) << testing::PrintToString(std::wstring(path));
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
