// The event log's sweep: which bases go, and when it runs.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "core/OEventLog.h"
#include "tests/core/EventLogKit.h"

using namespace kit;

namespace {

/// A log that asks and so refreshes and sweeps, beside a source that a test lets go of.
class EventLogSweep : public testing::Test {
  protected:
    EventLogSweep()
        : m_asking(std::make_unique<StoredMask>(L"asking")), m_other(std::make_unique<StoredMask>(L"other")) {
    }

    /// Starts with the clock at `tick`, both sources having a base.
    void Start(std::uint64_t tick) {
        m_clock.Show(tick);
        m_log = std::make_unique<OEventLog>(m_asking->Source());
        m_otherLog = std::make_unique<OEventLog>(m_other->Source());
    }
    void AskAt(std::uint64_t tick) {
        m_clock.Show(tick);
        m_log->IsEnabled(1);
    }

    StoppedClock m_clock{0};
    std::unique_ptr<StoredMask> m_asking;
    std::unique_ptr<StoredMask> m_other;
    std::unique_ptr<OEventLog> m_log;
    std::unique_ptr<OEventLog> m_otherLog;
};

TEST_F(EventLogSweep, RemovesABaseThatNoLogHoldsAfterTwoMinutes) {
    Start(400'000);
    m_otherLog.reset();
    AskAt(520'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 2); // two minutes exactly
    AskAt(525'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, CountsTheTwoMinutesToTheMillisecond) {
    Start(400'000);
    m_otherLog.reset();
    AskAt(520'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, KeepsABaseThatALogHolds) {
    Start(400'000);
    AskAt(900'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
    EXPECT_EQ(m_otherLog->Base(), OEventLog(m_other->Source()).Base());
}

TEST_F(EventLogSweep, KeepsABaseThatWasRefreshedLately) {
    Start(400'000);
    m_clock.Show(500'000);
    m_otherLog->IsEnabled(1);
    m_otherLog.reset();
    AskAt(620'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
    AskAt(625'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, RunsOnlyMoreThanFiveMinutesAfterTheSystemsStart) {
    Start(1'000);
    m_otherLog.reset();
    AskAt(300'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
    AskAt(305'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, RunsOneMillisecondAfterFiveMinutes) {
    Start(1'000);
    m_otherLog.reset();
    AskAt(300'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, RunsWithARefreshOnly) {
    Start(400'000);
    m_otherLog.reset();
    m_clock.Show(518'000);
    m_log->IsEnabled(1);
    AskAt(523'000); // the other is old enough, but the asking one is fresh
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
    AskAt(523'001);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, RunsWithEveryRefreshAsItsOwnTickNeverMoves) {
    Start(400'000);
    AskAt(500'000); // sweeps; a sweep tick that moved would hold the next one back for five minutes
    m_otherLog.reset();
    AskAt(530'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

TEST_F(EventLogSweep, TakesTheMaskAnewForALogThatComesLater) {
    Start(400'000);
    m_otherLog.reset();
    AskAt(530'000);
    m_other->SetMask(0x10000000);
    EXPECT_TRUE(OEventLog(m_other->Source()).IsEnabled(0x10000000));
    EXPECT_EQ(OEventLogBase::CountBases(), 2);
}

TEST_F(EventLogSweep, RemovesSeveralBasesAtOnce) {
    Start(400'000);
    m_otherLog.reset();
    const StoredMask third(L"third");
    const StoredMask fourth(L"fourth");
    {
        const OEventLog log(third.Source());
    }
    {
        const OEventLog log(fourth.Source());
    }
    EXPECT_EQ(OEventLogBase::CountBases(), 4);
    AskAt(530'000);
    EXPECT_EQ(OEventLogBase::CountBases(), 1);
}

} // namespace
