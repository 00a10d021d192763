// The words of a printer's state.
#include <gtest/gtest.h>

#include <ios>

#include "substitute/spooler/StatusText.h"

using namespace kemba::substitute;

namespace {

constexpr DWORD kWorkOffline = 0x400;

TEST(StatusText, EveryBitHasItsWords) {
    const struct {
        DWORD status;
        const wchar_t* words;
    } rows[] = {
        {0x1, L"Paused"},
        {0x2, L"Error"},
        {0x4, L"Deleting"},
        {0x8, L"Paper jam"},
        {0x10, L"Out of paper"},
        {0x20, L"Manual feed"},
        {0x40, L"Paper problem"},
        {0x80, L"Offline"},
        {0x100, L"I/O active"},
        {0x200, L"Busy"},
        {0x400, L"Printing"},
        {0x800, L"Output bin full"},
        {0x1000, L"Not available"},
        {0x2000, L"Waiting"},
        {0x4000, L"Processing"},
        {0x8000, L"Initializing"},
        {0x10000, L"Warming up"},
        {0x20000, L"Toner low"},
        {0x40000, L"No toner"},
        {0x80000, L"Page could not be printed"},
        {0x100000, L"User intervention required"},
        {0x200000, L"Out of memory"},
        {0x400000, L"Door open"},
        {0x800000, L"Print server unknown"},
        {0x1000000, L"Power save"},
        {0x2000000, L"Print server offline"},
        {0x4000000, L"Driver update required"},
        {0x8000000, L"Unknown status 0x8000000"},
        {0x80000000, L"Unknown status 0x80000000"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.status);
        EXPECT_EQ(StatusText(row.status, 0, 0), row.words);
    }
}

TEST(StatusText, NothingToSayIsReady) {
    EXPECT_EQ(StatusText(0, 0, 0), L"Ready");
}

TEST(StatusText, SeveralBitsComeInAscendingOrder) {
    EXPECT_EQ(StatusText(0x8 | 0x1 | 0x400000, 0, 0), L"Paused, Paper jam, Door open");
}

TEST(StatusText, UnknownBitsComeTogetherAfterTheKnownOnes) {
    EXPECT_EQ(StatusText(0x48000001, 0, 0), L"Paused, Unknown status 0x48000000");
}

TEST(StatusText, WorkedOfflineIsOfflineAndIsSaidOnce) {
    EXPECT_EQ(StatusText(0, kWorkOffline, 0), L"Offline");
    EXPECT_EQ(StatusText(0x80, kWorkOffline, 0), L"Offline");
    EXPECT_EQ(StatusText(0x8, kWorkOffline, 0), L"Paper jam, Offline");
}

TEST(StatusText, OtherAttributesSayNothing) {
    EXPECT_EQ(StatusText(0, ~kWorkOffline, 0), L"Ready");
}

TEST(StatusText, JobsAreCountedLast) {
    EXPECT_EQ(StatusText(0, 0, 1), L"Ready, 1 job");
    EXPECT_EQ(StatusText(0, 0, 2), L"Ready, 2 jobs");
    EXPECT_EQ(StatusText(0x80000001, 0, 17), L"Paused, Unknown status 0x80000000, 17 jobs");
}

} // namespace
