// Names, editions and build texts: the decisions on a version record.
#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "platform/OperatingSystem.h"

using namespace kemba;

namespace {

constexpr BYTE kWorkstation = 1;
constexpr BYTE kDomainController = 2;
constexpr BYTE kServer = 3;

constexpr WORD kEnterprise = 0x0002;
constexpr WORD kEmbedded = 0x0040;
constexpr WORD kDatacenter = 0x0080;
constexpr WORD kPersonal = 0x0200;
constexpr WORD kBlade = 0x0400;

constexpr int kTabletPc = 86;
constexpr int kMediaCenter = 87;
constexpr int kStarter = 88;
constexpr int kServerR2 = 89;

OSVERSIONINFOEXW Version(DWORD major, DWORD minor, BYTE type, DWORD build = 0, WORD suite = 0) {
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    version.dwMajorVersion = major;
    version.dwMinorVersion = minor;
    version.dwBuildNumber = build;
    version.wSuiteMask = suite;
    version.wProductType = type;
    return version;
}

/// Metrics that are non-zero, and a record of which are asked.
struct Metrics {
    static int WINAPI Answer(int index) {
        s_asked.push_back(index);
        for (const int set : s_set) {
            if (index == set) {
                return 7; // any value but 0 is a yes
            }
        }
        return 0;
    }

    inline static std::vector<int> s_set;
    inline static std::vector<int> s_asked;
};

std::string Edition(const OSVERSIONINFOEXW& version, std::vector<int> metrics = {}) {
    Metrics::s_set = std::move(metrics);
    Metrics::s_asked.clear();
    return EditionOfSystem(version, Metrics::Answer).Narrow();
}

struct NameRow {
    DWORD major;
    DWORD minor;
    DWORD build;
    const char* workstation;
    const char* other;
};

const NameRow kNames[] = {
    {10, 0, 0, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 10240, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 14392, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 14393, "Windows 10", "Windows Server 2016"},
    {10, 0, 14394, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 17762, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 17763, "Windows 10", "Windows Server 2019"},
    {10, 0, 17764, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 19045, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 20348, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 21999, "Windows 10", "Unknown Version of Windows Server"},
    {10, 0, 22000, "Windows 11", "Unknown Version of Windows Server"},
    {10, 0, 22621, "Windows 11", "Unknown Version of Windows Server"},
    {10, 0, 0x80000000, "Windows 11", "Unknown Version of Windows Server"}, // builds have no sign
    {10, 0, 0xFFFFFFFF, "Windows 11", "Unknown Version of Windows Server"},
    {6, 3, 9600, "Windows 8.1", "Windows Server 2012 R2"},
    {6, 2, 9200, "Windows 8", "Windows Server 2012"},
    {6, 1, 7601, "Windows 7", "Windows Server 2008 R2"},
    {6, 0, 6002, "Windows Vista", "Windows Server 2008"},
    {6, 1, 22000, "Windows 7", "Windows Server 2008 R2"},
    {5, 2, 3790, "Windows Server 2003", "Windows Server 2003"},
    {5, 1, 2600, "Windows XP", "Windows XP"},
    {5, 0, 2195, "Windows 2000", "Windows 2000"},
    {10, 1, 22621, "Windows 10.1", "Windows 10.1"},
    {11, 0, 30000, "Windows 11.0", "Windows 11.0"},
    {9, 0, 0, "Windows 9.0", "Windows 9.0"},
    {7, 0, 0, "Windows 7.0", "Windows 7.0"},
    {6, 4, 9841, "Windows 6.4", "Windows 6.4"},
    {5, 3, 0, "Windows 5.3", "Windows 5.3"},
    {4, 10, 2222, "Windows 4.10", "Windows 4.10"},
    {4, 0, 1381, "Windows 4.0", "Windows 4.0"},
    {0, 0, 0, "Windows 0.0", "Windows 0.0"},
    {0xFFFFFFFF, 0x80000000, 0, "Windows 4294967295.2147483648", "Windows 4294967295.2147483648"},
};

TEST(NameOfSystem, FollowsTheTable) {
    for (const NameRow& row : kNames) {
        SCOPED_TRACE(testing::Message() << row.major << "." << row.minor << " build " << row.build);
        EXPECT_STREQ(NameOfSystem(Version(row.major, row.minor, kWorkstation, row.build)).Narrow(),
                     row.workstation);
        for (const BYTE type : {kDomainController, kServer, BYTE{0}, BYTE{4}, BYTE{255}}) {
            EXPECT_STREQ(NameOfSystem(Version(row.major, row.minor, type, row.build)).Narrow(), row.other)
                << "product type " << int{type};
        }
    }
}

TEST(NameOfSystem, BeforeVersion10DependsOnNoBuild) {
    for (const NameRow& row : kNames) {
        if (row.major >= 10) {
            continue;
        }
        for (const DWORD build : {0UL, 1UL, 0xFFFFFFFFUL}) {
            SCOPED_TRACE(testing::Message() << row.major << "." << row.minor << " build " << build);
            EXPECT_STREQ(NameOfSystem(Version(row.major, row.minor, kWorkstation, build)).Narrow(),
                         row.workstation);
            EXPECT_STREQ(NameOfSystem(Version(row.major, row.minor, kServer, build)).Narrow(), row.other);
        }
    }
}

struct SuiteRow {
    WORD suite;
    const char* edition;
};

void ExpectEditions(const std::vector<BYTE>& types, DWORD major, DWORD minor,
                    const std::vector<SuiteRow>& rows, const std::string& suffix = "",
                    const std::vector<int>& metrics = {}) {
    for (const BYTE type : types) {
        for (const SuiteRow& row : rows) {
            EXPECT_EQ(Edition(Version(major, minor, type, 0, row.suite), metrics), row.edition + suffix)
                << major << "." << minor << " product type " << int{type} << " suite " << row.suite;
        }
    }
}

const std::vector<SuiteRow> kXpSuites = {
    {0, "Professional"},
    {kPersonal, "Home Edition"},
    {kEmbedded, "Embedded"},
    {kPersonal | kEmbedded, "Home Edition"},
    {kEnterprise | kDatacenter | kBlade, "Professional"},
    {0xFFFF, "Home Edition"},
    {static_cast<WORD>(0xFFFF & ~kPersonal), "Embedded"},
};

TEST(EditionOfSystem, OfAWorkstationOf51FollowsItsSuites) {
    ExpectEditions({kWorkstation}, 5, 1, kXpSuites);
}

TEST(EditionOfSystem, OfAWorkstationOf51IsReplacedByWhatTheMetricsTell) {
    const struct {
        std::vector<int> set;
        const char* edition;
    } rows[] = {
        {{kMediaCenter}, "Media Center"},
        {{kStarter}, "Starter Edition"},
        {{kTabletPc}, "Tablet PC Edition"},
        {{kMediaCenter, kStarter}, "Media Center"},
        {{kMediaCenter, kTabletPc}, "Media Center"},
        {{kStarter, kTabletPc}, "Starter Edition"},
        {{kMediaCenter, kStarter, kTabletPc}, "Media Center"},
    };
    for (const auto& row : rows) {
        for (const SuiteRow& suite : kXpSuites) {
            EXPECT_EQ(Edition(Version(5, 1, kWorkstation, 2600, suite.suite), row.set), row.edition);
        }
    }
}

TEST(EditionOfSystem, AsksTheMetricsInOrderUpToTheFirstYes) {
    const OSVERSIONINFOEXW xp = Version(5, 1, kWorkstation);
    Edition(xp);
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kMediaCenter, kStarter, kTabletPc}));
    Edition(xp, {kTabletPc});
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kMediaCenter, kStarter, kTabletPc}));
    Edition(xp, {kStarter});
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kMediaCenter, kStarter}));
    Edition(xp, {kMediaCenter});
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kMediaCenter}));
    Edition(Version(5, 2, kServer));
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kServerR2}));
    Edition(Version(5, 2, kDomainController));
    EXPECT_EQ(Metrics::s_asked, (std::vector<int>{kServerR2}));
}

TEST(EditionOfSystem, AsksNoMetricAnywhereElse) {
    const OSVERSIONINFOEXW others[] = {Version(5, 2, kWorkstation),
                                       Version(5, 0, kWorkstation),
                                       Version(6, 1, kWorkstation),
                                       Version(10, 0, kWorkstation),
                                       Version(5, 1, kServer),
                                       Version(5, 1, kDomainController),
                                       Version(6, 1, kServer),
                                       Version(10, 0, kServer),
                                       Version(5, 1, 0),
                                       Version(5, 2, 4)};
    for (const OSVERSIONINFOEXW& version : others) {
        Edition(version, {kMediaCenter, kStarter, kTabletPc, kServerR2});
        EXPECT_EQ(Metrics::s_asked, std::vector<int>{})
            << version.dwMajorVersion << "." << version.dwMinorVersion << " type "
            << int{version.wProductType};
    }
}

TEST(EditionOfSystem, OfAnyOtherWorkstationIsHomeOrProfessional) {
    const std::vector<SuiteRow> rows = {
        {0, "Professional"},         {kPersonal, "Home Edition"},
        {kEmbedded, "Professional"}, {kPersonal | kEmbedded, "Home Edition"},
        {kBlade, "Professional"},    {0xFFFF, "Home Edition"},
    };
    const std::vector<std::pair<DWORD, DWORD>> versions = {{10, 0}, {10, 1}, {6, 3}, {6, 1}, {6, 0},
                                                           {5, 2},  {5, 0},  {4, 0}, {1, 5}};
    for (const auto& [major, minor] : versions) {
        ExpectEditions({kWorkstation}, major, minor, rows);
    }
}

TEST(EditionOfSystem, OfAServerOfMajor6FollowsItsSuites) {
    const std::vector<SuiteRow> rows = {
        {0, "Standard Edition"},
        {kEnterprise, "Enterprise Edition"},
        {kDatacenter, "Datacenter Edition"},
        {kDatacenter | kEnterprise, "Datacenter Edition"},
        {kBlade, "Standard Edition"},
        {kBlade | kEnterprise, "Enterprise Edition"},
        {0x8200, "Standard Edition"}, // the high byte plays no part
        {0xFFFF, "Datacenter Edition"},
    };
    for (const DWORD minor : {0U, 1U, 2U, 3U, 4U}) {
        ExpectEditions({kDomainController, kServer}, 6, minor, rows, "", {kServerR2});
    }
}

const std::vector<SuiteRow> k52Suites = {
    {0, "Standard Edition"},
    {kEnterprise, "Enterprise Edition"},
    {kDatacenter, "Datacenter Edition"},
    {kDatacenter | kEnterprise, "Datacenter Edition"},
    {kDatacenter | kBlade, "Datacenter Edition"},
    {kEnterprise | kBlade, "Enterprise Edition"},
    {kBlade, "Web Edition"},
    {kBlade | 0x0010, "Standard Edition"}, // the web edition is the blade bit alone
    {kBlade | kPersonal, "Standard Edition"},
    {0x8400, "Standard Edition"},
    {0x8200, "Standard Edition"},
};

TEST(EditionOfSystem, OfAServerOf52FollowsItsSuites) {
    ExpectEditions({kDomainController, kServer}, 5, 2, k52Suites);
}

TEST(EditionOfSystem, OfASecondReleaseOf52EndsInR2WithoutABlank) {
    ExpectEditions({kDomainController, kServer}, 5, 2, k52Suites, "R2", {kServerR2});
    EXPECT_EQ(Edition(Version(5, 2, kServer), {kServerR2}), "Standard EditionR2");
    EXPECT_EQ(Edition(Version(5, 2, kServer), {kMediaCenter, kStarter, kTabletPc}), "Standard Edition");
}

TEST(EditionOfSystem, OfAnyOtherServerHasTheOldWords) {
    const std::vector<SuiteRow> rows = {
        {0, "Server"},
        {kEnterprise, "Advanced Server"},
        {kDatacenter, "Datacenter Server"},
        {kDatacenter | kEnterprise, "Datacenter Server"},
        {kBlade, "Server"},
        {0x8200, "Server"},
        {0xFFFF, "Datacenter Server"},
    };
    const std::vector<std::pair<DWORD, DWORD>> versions = {{10, 0}, {10, 1}, {11, 0}, {7, 0}, {5, 0},
                                                           {5, 1},  {5, 3},  {4, 0},  {2, 5}};
    for (const auto& [major, minor] : versions) {
        ExpectEditions({kDomainController, kServer}, major, minor, rows, "", {kServerR2});
    }
}

TEST(EditionOfSystem, OfAnyOtherProductTypeIsEmpty) {
    for (const BYTE type : {BYTE{0}, BYTE{4}, BYTE{255}}) {
        for (const auto& [major, minor] : {std::pair<DWORD, DWORD>{10, 0}, {6, 1}, {5, 2}, {5, 1}}) {
            EXPECT_EQ(Edition(Version(major, minor, type, 0, 0xFFFF), {kMediaCenter, kServerR2}), "");
        }
    }
}

std::string BuildText(DWORD build, const wchar_t* servicePack) {
    OSVERSIONINFOEXW version = Version(6, 1, kWorkstation, build);
    std::wcscpy(version.szCSDVersion, servicePack);
    return BuildTextOfSystem(version).Narrow();
}

TEST(BuildTextOfSystem, IsTheBuildNumberAndTheServicePack) {
    EXPECT_EQ(BuildText(19045, L""), "Build 19045");
    EXPECT_EQ(BuildText(7601, L"Service Pack 1"), "Build 7601 (Service Pack 1)");
    EXPECT_EQ(BuildText(0, L""), "Build 0");
    EXPECT_EQ(BuildText(2222, L" A "), "Build 2222 ( A )");
}

TEST(BuildTextOfSystem, ShowsTheLow16BitsOfTheBuildNumber) {
    EXPECT_EQ(BuildText(65535, L""), "Build 65535");
    EXPECT_EQ(BuildText(65536, L""), "Build 0");
    EXPECT_EQ(BuildText(67766446, L"B"), "Build 2222 (B)"); // 4.10.2222, as the last of its line reports it
    EXPECT_EQ(BuildText(0xFFFFFFFF, L""), "Build 65535");
}

TEST(BuildTextOfSystem, HoldsTheLongestServicePackText) {
    const std::wstring longest(127, L'x');
    EXPECT_EQ(BuildText(1, longest.c_str()), "Build 1 (" + std::string(127, 'x') + ")");
}

} // namespace
