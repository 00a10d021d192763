// The watch over what the program holds sees every kind of thing that is kept, and what is given back twice.
#include <windows.h>
#include <oleauto.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "demo/WinePrinters.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Holdings.h"

using namespace kit;

namespace {

class HoldingsWatch : public testing::Test {
  protected:
    HoldingsWatch() {
        static const bool watched = [] {
            WatchHoldings(GetModuleHandleW(nullptr), MayAllocate);
            return true;
        }();
        static_cast<void>(watched);
        m_before = Held();
    }
    ~HoldingsWatch() override { refusedCall = nullptr; }

    /// How many of the kind came since the test began.
    long Since(long Holdings::* kind) const { return Held().*kind - m_before.*kind; }

    static inline const char* refusedCall = nullptr;

  private:
    static bool MayAllocate(const char* call) { return !refusedCall || std::strcmp(call, refusedCall) != 0; }

    Holdings m_before;
};

/// Keeps the compiler from doing without a block.
void* volatile kept = nullptr;

TEST_F(HoldingsWatch, CountsHeapBlocksFromEveryCall) {
    kept = std::malloc(1);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 1);
    kept = std::realloc(kept, 1000);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 1);
    std::free(kept);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 0);
    kept = std::calloc(1, 1);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 1);
    std::free(kept);
    kept = std::realloc(nullptr, 1);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 1);
    std::free(kept);
    int* volatile const made = new int;
    EXPECT_EQ(Since(&Holdings::heapBlocks), 1);
    delete made;
    std::free(nullptr);
    EXPECT_EQ(Since(&Holdings::heapBlocks), 0);
}

TEST_F(HoldingsWatch, CountsLocalBlocks) {
    const HLOCAL block = LocalAlloc(LPTR, 1);
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, ERROR_ACCESS_DENIED, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    ASSERT_TRUE(text);
    EXPECT_EQ(Since(&Holdings::localBlocks), 2);
    LocalFree(block);
    LocalFree(text);
    LocalFree(nullptr);
    EXPECT_EQ(Since(&Holdings::localBlocks), 0);
}

TEST_F(HoldingsWatch, CountsTexts) {
    const BSTR text = SysAllocString(L"text");
    const BSTR other = SysAllocStringLen(nullptr, 3);
    EXPECT_EQ(Since(&Holdings::texts), 2);
    SysFreeString(text);
    SysFreeString(other);
    SysFreeString(nullptr);
    EXPECT_EQ(Since(&Holdings::texts), 0);
}

TEST_F(HoldingsWatch, CountsRegistryKeys) {
    HKEY opened = nullptr;
    HKEY missing = nullptr;
    HKEY made = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &opened), ERROR_SUCCESS);
    EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, L"No such key", 0, KEY_READ, &missing), ERROR_SUCCESS);
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_CURRENT_USER, L"Software", 0, nullptr, 0, KEY_READ, nullptr, &made, nullptr),
        ERROR_SUCCESS);
    EXPECT_EQ(Since(&Holdings::registryKeys), 2);
    RegCloseKey(opened);
    RegCloseKey(made);
    EXPECT_EQ(Since(&Holdings::registryKeys), 0);
}

TEST_F(HoldingsWatch, CountsHandles) {
    const HANDLE file = CreateFileW(L"NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const HANDLE missing = CreateFileW(L"no such file", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(missing, INVALID_HANDLE_VALUE);
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(Since(&Holdings::handles), 2);
    CloseHandle(file);
    CloseHandle(event);
    EXPECT_EQ(Since(&Holdings::handles), 0);
}

TEST_F(HoldingsWatch, CountsPrinters) {
    const demo::Printer printer;
    const long before = Since(&Holdings::printers);
    std::wstring name = printer.Name();
    HANDLE opened = nullptr;
    ASSERT_TRUE(OpenPrinterW(name.data(), &opened, nullptr));
    EXPECT_EQ(Since(&Holdings::printers), before + 1);
    ClosePrinter(opened);
    EXPECT_EQ(Since(&Holdings::printers), before);
}

TEST_F(HoldingsWatch, RefusesWhatTheGateDoesNotLetThrough) {
    refusedCall = "LocalAlloc";
    EXPECT_FALSE(LocalAlloc(LPTR, 1));
    refusedCall = "SysAllocStringLen";
    EXPECT_FALSE(SysAllocStringLen(L"x", 1));
    refusedCall = "FormatMessageW";
    wchar_t* text = nullptr;
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                             ERROR_ACCESS_DENIED, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr),
              0U);
    refusedCall = "malloc";
    kept = std::malloc(1);
    refusedCall = nullptr;
    EXPECT_EQ(kept, nullptr);
    EXPECT_EQ(Differences({}, {.heapBlocks = Since(&Holdings::heapBlocks),
                               .localBlocks = Since(&Holdings::localBlocks),
                               .texts = Since(&Holdings::texts)}),
              Lines{});
}

TEST_F(HoldingsWatch, AFakeServerAndItsRunLeaveNothing) {
    {
        const FakeServer first;
    } // the process-wide parts of the runtime and of the kit
    const Holdings before = Held();
    {
        FakeServer server;
        server.GiveText("IDriverAutomation.GetComment",
                        L"a comment that is long enough for a block of its own");
    }
    EXPECT_EQ(Differences(before, Held()), Lines{});
}

TEST(HoldingsDifferences, AreReadableLines) {
    const Holdings before{.heapBlocks = 2, .handles = 1};
    const Holdings after{.heapBlocks = 5, .registryKeys = 1};
    EXPECT_EQ(Differences(before, after),
              (Lines{"not given back: 3 heap blocks", "not given back: 1 registry keys",
                     "given back once too often: 1 handles"}));
    EXPECT_EQ(Differences(after, after), Lines{});
}

} // namespace
