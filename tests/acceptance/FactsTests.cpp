// What a report says of the machine.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "tests/acceptance/Facts.h"
#include "tests/acceptance/Plan.h"
#include "tests/kit/ProcessRun.h"

using namespace acceptance;

namespace {

TEST(VersionLine, NamesProductReleaseAndNumbers) {
    EXPECT_EQ(VersionLine({"Windows 10 Pro", "22H2", 10, 0, 19045, 3693}),
              "Windows 10 Pro 22H2, 10.0.19045.3693");
    EXPECT_EQ(VersionLine({"Windows 7 Professional", "", 6, 1, 7601, 0}),
              "Windows 7 Professional, 6.1.7601.0");
    EXPECT_EQ(VersionLine({"", "", 6, 0, 6000, 0}), "Windows, 6.0.6000.0");
}

TEST(VersionLine, CallsWindows11ByItsName) {
    EXPECT_EQ(VersionLine({"Windows 10 Pro", "24H2", 10, 0, 26100, 1}), "Windows 11 Pro 24H2, 10.0.26100.1");
    EXPECT_EQ(VersionLine({"Windows 10 Pro", "21H2", 10, 0, 21999, 1}), "Windows 10 Pro 21H2, 10.0.21999.1");
    EXPECT_EQ(VersionLine({"Windows Server 2025", "24H2", 10, 0, 26100, 1}),
              "Windows Server 2025 24H2, 10.0.26100.1");
}

TEST(AcceptanceFacts, IsThisOne) {
    const Machine machine = DescribeMachine();
    EXPECT_EQ(machine.codePage, GetACP());
    EXPECT_EQ(machine.isWine, GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr);
    const auto lines =
        DescribeRun(machine, std::filesystem::path(kit::ProgramPath(L"kemba.exe")).parent_path());
    EXPECT_EQ(std::ranges::count_if(lines,
                                    [](const std::string& line) {
                                        return line.starts_with("programs    kemba.exe 1.") ||
                                               line.starts_with("kemba says  OS: ");
                                    }),
              2);
}

} // namespace
