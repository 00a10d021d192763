// The event log: masks in the registry, refreshing, sharing, parents.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "core/OEventLog.h"
#include "core/OString.h"
#include "tests/core/EventLogKit.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/SetAside.h"

using namespace kit;

namespace {

constexpr std::uint32_t kCommandLine = 0x10000000;
constexpr std::uint32_t kDefault = 0xE0000000;

TEST(OEventLog, WithoutAStoredMaskTakesTheDefaultOneAndStoresIt) {
    const StoredMask stored;
    const OEventLog log(stored.Source());
    EXPECT_EQ(MaskOf(log), kDefault);
    EXPECT_FALSE(log.IsEnabled(kCommandLine));
    EXPECT_EQ(stored.Get(), RegistryData::OfDword(kDefault));
}

TEST(OEventLog, TakesTheStoredMask) {
    int number = 0;
    for (const std::uint32_t mask : {kCommandLine, 0U, 1U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(mask);
        const StoredMask stored(std::to_wstring(++number));
        stored.SetMask(mask);
        EXPECT_EQ(MaskOf(OEventLog(stored.Source())), mask);
        EXPECT_EQ(stored.Get(), RegistryData::OfDword(mask));
    }
}

TEST(OEventLog, IsEnabledWhenAnyOfTheBitsIs) {
    const StoredMask stored;
    stored.SetMask(kCommandLine);
    const OEventLog log(stored.Source());
    EXPECT_TRUE(log.IsEnabled(kCommandLine));
    EXPECT_FALSE(log.IsEnabled(0x20000000));
    EXPECT_TRUE(log.IsEnabled(0x30000000));
    EXPECT_FALSE(log.IsEnabled(0));
}

TEST(OEventLog, TakesTheDefaultMaskForAValueOfAnotherSize) {
    const RegistryData rows[] = {
        RegistryData::OfText(L"268435456"),
        RegistryData::OfBytes(REG_QWORD, {0, 0, 0, 0x10, 0, 0, 0, 0}),
        RegistryData::OfBytes(REG_BINARY, {0xFF, 0xFF, 0xFF}),
        RegistryData::OfBytes(REG_BINARY, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
        RegistryData::OfBytes(REG_BINARY, {}),
    };
    int number = 0;
    for (const RegistryData& row : rows) {
        SCOPED_TRACE(row.bytes.size());
        const StoredMask stored(std::to_wstring(++number));
        stored.Set(row);
        EXPECT_EQ(MaskOf(OEventLog(stored.Source())), kDefault);
        EXPECT_EQ(stored.Get(), RegistryData::OfDword(kDefault));
    }
}

TEST(OEventLog, TakesFourBytesOfAnyTypeAsAMask) {
    const StoredMask stored;
    stored.Set(RegistryData::OfBytes(REG_BINARY, {0, 0, 0, 0x10}));
    EXPECT_EQ(MaskOf(OEventLog(stored.Source())), kCommandLine);
    EXPECT_EQ(stored.Get(), RegistryData::OfDword(kCommandLine)); // written back as what it is
}

TEST(OEventLog, OfOneSourceSharesItsBaseAndReadsItOnce) {
    StoppedClock clock(1'000);
    const StoredMask stored;
    stored.SetMask(kCommandLine);
    const OEventLog first(stored.Source());
    stored.SetMask(0);
    const OEventLog second(OString(stored.Source().Wide()));
    EXPECT_EQ(first.Base(), second.Base());
    EXPECT_TRUE(second.IsEnabled(kCommandLine));
    EXPECT_EQ(stored.Get(), RegistryData::OfDword(0));
}

TEST(OEventLog, OfSourcesInDifferentCaseHasDifferentBases) {
    const StoredMask stored(L"a");
    const StoredMask other(L"A");
    const OEventLog first(stored.Source());
    const OEventLog second(other.Source());
    EXPECT_NE(first.Base(), second.Base());
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
}

TEST(OEventLog, SeesAChangeMoreThanFiveSecondsAfterTheLastRefresh) {
    const std::uint64_t start = 100'000;
    StoppedClock clock(start);
    const StoredMask stored;
    const OEventLog log(stored.Source());
    stored.SetMask(kCommandLine);
    for (const std::uint64_t passed : {0U, 1U, 4'999U, 5'000U}) {
        SCOPED_TRACE(passed);
        clock.Show(start + passed);
        EXPECT_FALSE(log.IsEnabled(kCommandLine));
    }
    clock.Show(start + 5'001);
    EXPECT_TRUE(log.IsEnabled(kCommandLine));

    stored.SetMask(0);
    clock.Show(start + 10'001); // five seconds after that refresh
    EXPECT_TRUE(log.IsEnabled(kCommandLine));
    clock.Show(start + 10'002);
    EXPECT_FALSE(log.IsEnabled(kCommandLine));
}

TEST(OEventLog, RefreshesAcrossTheWrapOfThe32BitTick) {
    const std::uint64_t start = 0x1'FFFF'FF00;
    StoppedClock clock(start);
    const StoredMask stored;
    const OEventLog log(stored.Source());
    stored.SetMask(kCommandLine);
    clock.Show(start + 5'000);
    EXPECT_FALSE(log.IsEnabled(kCommandLine));
    clock.Show(start + 5'001);
    EXPECT_TRUE(log.IsEnabled(kCommandLine));
}

TEST(OEventLog, CountsTheLow32BitsOfTheTickOnly) {
    StoppedClock clock(1'000);
    const StoredMask stored;
    const OEventLog log(stored.Source());
    stored.SetMask(kCommandLine);
    clock.Show(0x1'0000'0000 + 6'000);
    EXPECT_FALSE(log.IsEnabled(kCommandLine));
    clock.Show(0x1'0000'0000 + 6'001);
    EXPECT_TRUE(log.IsEnabled(kCommandLine));
}

TEST(OEventLog, DoesNotStoreTheMaskWhenItRefreshes) {
    StoppedClock clock(1'000);
    const StoredMask stored;
    stored.SetMask(kCommandLine);
    const OEventLog log(stored.Source());
    stored.Remove();
    clock.Show(7'000);
    EXPECT_EQ(MaskOf(log), kDefault);
    EXPECT_EQ(stored.Get(), std::nullopt);
}

TEST(OEventLog, AnswersThroughTheNearestParentWithABase) {
    const StoredMask nearest(L"near");
    const StoredMask farthest(L"far");
    nearest.SetMask(1);
    farthest.SetMask(2);
    const auto top = std::make_shared<OEventLog>(farthest.Source());
    const auto parent = std::make_shared<OEventLog>(nearest.Source());
    const auto child = std::make_shared<OEventLog>(parent);
    const OEventLog grandchild(child);
    EXPECT_EQ(grandchild.Base(), nullptr);
    EXPECT_EQ(MaskOf(grandchild), 1U);
    EXPECT_EQ(MaskOf(*child), 1U);
    EXPECT_EQ(MaskOf(OEventLog(top)), 2U);
}

TEST(OEventLog, WithoutAnyBaseIsNeverEnabled) {
    const auto orphan = std::make_shared<OEventLog>(std::shared_ptr<OEventLog>());
    EXPECT_FALSE(orphan->IsEnabled(0xFFFFFFFF));
    EXPECT_FALSE(OEventLog(orphan).IsEnabled(0xFFFFFFFF));
}

TEST(OEventLog, AnswersSeveralThreads) {
    const StoredMask stored;
    stored.SetMask(kCommandLine);
    const OEventLog log(stored.Source());
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, -1);
    StoppedClock clock(GetTickCount64());
    for (int& count : wrong) {
        threads.emplace_back([&log, &count, &clock] {
            count = 0;
            for (int round = 0; round < 50; ++round) {
                clock.Show(GetTickCount64() + static_cast<std::uint64_t>(round) * 6'000); // stale each time
                count += log.IsEnabled(kCommandLine) && !log.IsEnabled(0x20000000) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST(OEventLog, GivesSeveralThreadsOneBase) {
    const StoredMask stored;
    const std::wstring source = stored.Source().Wide();
    std::vector<std::thread> threads;
    std::vector<std::shared_ptr<OEventLogBase>> bases(8);
    for (auto& base : bases) {
        threads.emplace_back([&] { base = OEventLog(source.c_str()).Base(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
    for (const auto& base : bases) {
        EXPECT_NE(base, nullptr);
        EXPECT_EQ(base, bases.front());
    }
}

/// A base that has a Windows event-log source, as another program's might.
struct BaseWithEventSource : OEventLogBase {
    BaseWithEventSource(const OString& source, HANDLE eventSource) : OEventLogBase(source) {
        m_eventSource = eventSource;
    }
};

std::vector<HANDLE> g_deregistered;

BOOL WINAPI RecordDeregistering(HANDLE eventSource) {
    g_deregistered.push_back(eventSource);
    return TRUE;
}

TEST(OEventLogBase, GivesItsEventSourceBackWhenItHasOne) {
    const SystemCallsPreset calls;
    calls->deregisterEventSource = RecordDeregistering;
    const StoredMask stored;
    int source = 0;
    {
        const OEventLogBase without(stored.Source());
    }
    EXPECT_TRUE(g_deregistered.empty());
    {
        const BaseWithEventSource with(stored.Source(), &source);
    }
    EXPECT_EQ(g_deregistered, std::vector<HANDLE>{&source});
}

} // namespace
