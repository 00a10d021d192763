// Libraries of the system by full path, and the imports that wait for their first call.
#include <windows.h>
#include <delayimp.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "core/SystemLibraries.h"

namespace {

std::wstring PathOf(HMODULE library) {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(library, path, MAX_PATH));
}

std::wstring PathInTheSystem(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    return std::wstring(folder, GetSystemDirectoryW(folder, MAX_PATH)) + L"\\" + name;
}

HMODULE LoadForAnImport(const char* name) {
    DelayLoadInfo import = {};
    import.szDll = name;
    return reinterpret_cast<HMODULE>(__pfnDliNotifyHook2(dliNotePreLoadLibrary, &import));
}

TEST(SystemLibraries, AreLoadedFromTheSystemsFolder) {
    const HMODULE library = OCore::LoadSystemLibrary("compstui.dll");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(lstrcmpiW(PathOf(library).c_str(), PathInTheSystem(L"compstui.dll").c_str()), 0);
}

TEST(SystemLibraries, OthersAreNone) {
    EXPECT_EQ(OCore::LoadSystemLibrary("no such.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(OCore::LoadSystemLibrary(std::string(MAX_PATH, 'x')), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    // The longest name that fits: looked for, and not found.
    const std::size_t room = MAX_PATH - 1 - PathInTheSystem(L"").size();
    EXPECT_EQ(OCore::LoadSystemLibrary(std::string(room, 'x')), nullptr);
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_EQ(OCore::LoadSystemLibrary(std::string(room + 1, 'x')), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
}

TEST(SystemLibraries, DelayedImportsAreLoadedThatWay) {
    ASSERT_NE(__pfnDliNotifyHook2, nullptr);
    const HMODULE library = LoadForAnImport("compstui.dll");
    EXPECT_EQ(lstrcmpiW(PathOf(library).c_str(), PathInTheSystem(L"compstui.dll").c_str()), 0);
}

TEST(SystemLibraries, OtherStepsOfADelayedImportAreLeftAlone) {
    DelayLoadInfo import = {};
    import.szDll = "compstui.dll";
    for (const unsigned step : {dliNoteStartProcessing, dliNotePreGetProcAddress, dliNoteEndProcessing}) {
        EXPECT_EQ(__pfnDliNotifyHook2(step, &import), nullptr);
    }
}

TEST(SystemLibrariesDeathTest, AnImportWithoutItsLibraryEndsTheProcess) {
    // With null for an answer the import would be looked for beside the program.
    constexpr int kEnded = 77;
    const auto import = [] {
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* exception) -> LONG {
            const DWORD missing =
                static_cast<DWORD>(VcppException(ERROR_SEVERITY_ERROR, ERROR_MOD_NOT_FOUND));
            ExitProcess(exception->ExceptionRecord->ExceptionCode == missing ? kEnded : 0);
        });
        LoadForAnImport("no such.dll");
    };
    EXPECT_EXIT(import(), testing::ExitedWithCode(kEnded), "");
}

} // namespace
