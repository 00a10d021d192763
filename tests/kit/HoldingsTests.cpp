// The watch over what the program holds sees every kind of thing that is kept, and what is given back twice.
#include <windows.h>
#include <oleauto.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "automation/Owners.h"
#include "demo/Printers.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Holdings.h"
#include "tests/kit/Owners.h"

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
    UniqueLocal<void> block(LocalAlloc(LPTR, 1));
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, ERROR_ACCESS_DENIED, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    UniqueLocal<wchar_t> owned(text);
    ASSERT_TRUE(owned);
    EXPECT_EQ(Since(&Holdings::localBlocks), 2);
    block.reset();
    owned.reset();
    LocalFree(nullptr);
    EXPECT_EQ(Since(&Holdings::localBlocks), 0);
}

TEST_F(HoldingsWatch, CountsTexts) {
    kemba::OwnedBstr text;
    kemba::OwnedBstr other;
    *text.Put() = SysAllocString(L"text");
    *other.Put() = SysAllocStringLen(nullptr, 3);
    EXPECT_EQ(Since(&Holdings::texts), 2);
    text = {};
    other = {};
    SysFreeString(nullptr);
    EXPECT_EQ(Since(&Holdings::texts), 0);
}

TEST_F(HoldingsWatch, CountsRegistryKeys) {
    UniqueKey opened = OpenKey(HKEY_CURRENT_USER, L"Software", KEY_READ);
    ASSERT_TRUE(opened);
    EXPECT_FALSE(OpenKey(HKEY_CURRENT_USER, L"No such key", KEY_READ));
    UniqueKey made = MakeKey(HKEY_CURRENT_USER, L"Software", KEY_READ);
    ASSERT_TRUE(made);
    EXPECT_EQ(Since(&Holdings::registryKeys), 2);
    opened.reset();
    made.reset();
    EXPECT_EQ(Since(&Holdings::registryKeys), 0);
}

TEST_F(HoldingsWatch, CountsHandles) {
    UniqueHandle file = OpenExisting(L"NUL", GENERIC_READ, 0);
    EXPECT_FALSE(OpenExisting(L"no such file", GENERIC_READ, 0));
    UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(Since(&Holdings::handles), 2);
    file.reset();
    event.reset();
    EXPECT_EQ(Since(&Holdings::handles), 0);
}

TEST_F(HoldingsWatch, CountsPrinters) {
    const demo::Printer printer;
    const long before = Since(&Holdings::printers);
    UniquePrinter opened = OwnPrinter(printer.Name());
    ASSERT_TRUE(opened);
    EXPECT_EQ(Since(&Holdings::printers), before + 1);
    opened.reset();
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
