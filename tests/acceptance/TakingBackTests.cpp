// Taking back what a record names.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "demo/Made.h"
#include "demo/Printers.h"
#include "demo/SpoolerLock.h"
#include "tests/acceptance/TakingBack.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"

using namespace acceptance;
using namespace kit;

namespace {

using AllMade = std::vector<demo::Made>;

TEST(TakingBack, WhatUsesAnotherGoesFirst) {
    EXPECT_EQ(InOrder({{"folder", L"f"},
                       {"driver", L"d"},
                       {"port", L"p"},
                       {"printer", L"1"},
                       {"registration", L"r"},
                       {"printer", L"2"}}),
              (AllMade{{"registration", L"r"},
                       {"printer", L"1"},
                       {"printer", L"2"},
                       {"port", L"p"},
                       {"driver", L"d"},
                       {"folder", L"f"}}));
}

TEST(TakingBack, EachIsTakenOnceAndWhatIsDoneOrUnknownIsLeft) {
    EXPECT_EQ(InOrder({{"printer", L"1"},
                       {"printer", L"1"},
                       {"moon", L"x"},
                       {"test-keys", L""},
                       {"done", L"test-keys"}}),
              (AllMade{{"printer", L"1"}}));
}

TEST(TakingBack, PrintersFilesAndFoldersAreGoneAfterwards) {
    const demo::SpoolerLock lock;
    const std::wstring printer = demo::UniquePrinterName();
    demo::MakePrinter(printer, {});
    const TemporaryFolder around;
    const std::wstring folder = around.File(std::wstring(kFolderBegin) + L"1");
    std::filesystem::create_directories(folder + L"\\below");
    const TemporaryFile file("bytes");
    const AllMade made = {{"folder", folder}, {"file", file.Path()}, {"printer", printer}};
    EXPECT_EQ(TakeBack(made), std::vector<std::string>{});
    EXPECT_FALSE(demo::PrinterExists(printer));
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_FALSE(std::filesystem::exists(file.Path()));
    EXPECT_EQ(TakeBack(made), std::vector<std::string>{}) << "once more, with nothing there";
}

TEST(TakingBack, NoOtherFolderAndNoClassWithoutAnIdentityIsTaken) {
    const TemporaryFolder folder;
    EXPECT_EQ(TakeBack({{"folder", folder.Path()}}).size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(folder.Path()));
    EXPECT_EQ(TakeBack({{"class", L""}}), std::vector<std::string>{"class "});
}

} // namespace
