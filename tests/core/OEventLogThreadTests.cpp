// The event log of several threads. What is made at its first use needs a process of its own, as ctest gives
// it.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "core/OEventLog.h"
#include "tests/core/EventLogKit.h"
#include "tests/kit/AtOnce.h"
#include "tests/kit/SetAside.h"

using namespace kit;

namespace {

constexpr int kThreads = 8;

/// A clock that makes every mask stale: each look at it is six seconds later.
class RunningClock {
  public:
    RunningClock() { m_calls->getTickCount64 = Tick; }

  private:
    static ULONGLONG WINAPI Tick() { return s_tick += 6'000; }

    inline static std::atomic<ULONGLONG> s_tick{1'000'000}; // late enough for sweeps
    SystemCallsPreset m_calls;
};

TEST(OEventLogThreads, AnswerByOneOfTheMasksWhileTheValueChanges) {
    const StoredMask stored;
    stored.SetMask(0x1);
    const RunningClock clock;
    const OEventLog log(stored.Source());
    const OEventLog child(std::make_shared<OEventLog>(stored.Source()));
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int thread) {
        for (int round = 0; round < 400; ++round) {
            if (thread == 0) {
                stored.SetMask(round % 2 == 0 ? 0x2 : 0x1);
            }
            const OEventLog& asked = round % 2 == 0 ? log : child;
            wrong += asked.IsEnabled(0x3) ? 0 : 1;
            wrong += asked.IsEnabled(OEventLogBase::kDefaultMask) ? 1 : 0; // no bit of it is in either mask
        }
    });
    EXPECT_EQ(wrong, 0);
    for (const std::uint32_t mask : {0x2U, 0x1U}) { // and the last word is the registry's
        stored.SetMask(mask);
        EXPECT_TRUE(log.IsEnabled(mask));
        EXPECT_FALSE(child.IsEnabled(~mask));
    }
}

TEST(OEventLogThreads, ThatAskFirstGetOneBaseOfASource) {
    const StoredMask stored;
    const std::wstring source = stored.Source().Wide();
    std::array<std::shared_ptr<OEventLogBase>, kThreads> bases;
    AtOnce(kThreads, [&](int thread) {
        bases[static_cast<std::size_t>(thread)] = OEventLogBase::Fetch(source.c_str());
    });
    ASSERT_TRUE(bases[0]);
    for (const auto& base : bases) {
        EXPECT_EQ(base, bases[0]);
    }
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST(OEventLogThreads, OpenAndCloseLogsOfManySourcesWhileOthersAreSweptOut) {
    const StoredMask first(L"1");
    const StoredMask second(L"2");
    const StoredMask third(L"3");
    const StoredMask fourth(L"4");
    const StoredMask* const all[] = {&first, &second, &third, &fourth};
    for (std::uint32_t index = 0; index < 4; ++index) {
        all[index]->SetMask(1U << index);
    }
    const RunningClock clock;
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int thread) {
        for (std::uint32_t round = 0; round < 300; ++round) {
            const std::uint32_t index = (static_cast<std::uint32_t>(thread) + round) % 4;
            const OEventLog log(OString(all[index]->Source().Wide()));
            wrong += log.IsEnabled(1U << index) ? 0 : 1;
            wrong += log.IsEnabled(~(1U << index)) ? 1 : 0;
        }
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
