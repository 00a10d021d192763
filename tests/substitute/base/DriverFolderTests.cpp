// Which paths lie below a folder.
#include <gtest/gtest.h>

#include <string>

#include "substitute/base/DriverFolder.h"

using namespace kemba::substitute;

namespace {

constexpr wchar_t kDrivers[] = LR"(C:\Windows\system32\spool\DRIVERS\x64)";
constexpr wchar_t kShare[] = LR"(\\server\print$\x64)";

struct Row {
    const wchar_t* path;
    const wchar_t* folder;
};

TEST(DriverFolder, FilesBelowItAreItsOwn) {
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

TEST(DriverFolder, OtherFilesAreNot) {
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

} // namespace
