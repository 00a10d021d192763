// The process-wide record: filled once, by whichever request the system answers first. A test of its filling
// needs a process of its own, as ctest gives it.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <cwchar>
#include <thread>
#include <vector>

#include "core/OString.h"
#include "core/SystemCalls.h"
#include "platform/OperatingSystem.h"
#include "tests/kit/SetAside.h"

using namespace kemba;
using namespace kit;

namespace {

/// The version call: what it is asked and what it answers.
struct VersionCall {
    static WINBOOL WINAPI Answer(OSVERSIONINFOW* plain) {
        s_calls.fetch_add(1);
        while (s_held) {
            std::this_thread::yield();
        }
        auto& version = *reinterpret_cast<OSVERSIONINFOEXW*>(plain);
        s_askedSize = version.dwOSVersionInfoSize;
        OSVERSIONINFOEXW blank{};
        blank.dwOSVersionInfoSize = version.dwOSVersionInfoSize;
        s_askedBlank = std::memcmp(&version, &blank, sizeof(blank)) == 0;
        if (s_failures > 0) {
            --s_failures;
            version.dwMajorVersion = 99; // a failing call may leave anything behind
            return FALSE;
        }
        version.dwMajorVersion = 5;
        version.dwMinorVersion = 2;
        version.dwBuildNumber = 0x00120ECE;
        version.dwPlatformId = 2;
        version.wServicePackMajor = 0xFFFE;
        version.wServicePackMinor = 5;
        version.wSuiteMask = 0x0400;
        version.wProductType = 3;
        std::wcscpy(version.szCSDVersion, L"Service Pack 2");
        return TRUE;
    }
    static int WINAPI Metric(int index) { return index == 89 ? 1 : 0; }

    inline static std::atomic<int> s_calls{0};
    inline static std::atomic<int> s_failures{0};
    inline static std::atomic<bool> s_held{false};
    inline static DWORD s_askedSize = 0;
    inline static bool s_askedBlank = false;
};

class OperatingSystemRecord : public testing::Test {
  protected:
    OperatingSystemRecord() {
        m_calls->getVersionEx = VersionCall::Answer;
        m_calls->getSystemMetrics = VersionCall::Metric;
    }

    static void ExpectUnfilled(const OperatingSystem& record) {
        EXPECT_FALSE(record.filled);
        for (const OString* const text :
             {&record.name, &record.edition, &record.buildText, &record.servicePackText}) {
            EXPECT_STREQ(text->Narrow(), "");
        }
        EXPECT_EQ(record.major, 0U);
        EXPECT_EQ(record.minor, 0U);
        EXPECT_EQ(record.servicePack, 0U);
        EXPECT_EQ(record.platform, 0U);
        EXPECT_EQ(record.productType, 0);
    }

    static void ExpectFilled(const OperatingSystem& record) {
        EXPECT_TRUE(record.filled);
        EXPECT_STREQ(record.name.Narrow(), "Windows Server 2003");
        EXPECT_STREQ(record.edition.Narrow(), "Web EditionR2");
        EXPECT_STREQ(record.buildText.Narrow(), "Build 3790 (Service Pack 2)");
        EXPECT_EQ(record.major, 5U);
        EXPECT_EQ(record.minor, 2U);
        EXPECT_STREQ(record.servicePackText.Narrow(), "Service Pack 2");
        EXPECT_EQ(record.servicePack, 0xFFFEU);
        EXPECT_EQ(record.platform, 2U);
        EXPECT_EQ(record.productType, 3);
    }

    SystemCallsPreset m_calls;
};

TEST_F(OperatingSystemRecord, HoldsWhatTheSystemReports) {
    ExpectFilled(TheOperatingSystem());
}

TEST_F(OperatingSystemRecord, HoldsBothFormsOfItsTextsForThreadsToRead) {
    const OperatingSystem& record = TheOperatingSystem();
    for (const OString* const text :
         {&record.name, &record.edition, &record.buildText, &record.servicePackText}) {
        const OString::Body* const body = text->GetBody();
        EXPECT_TRUE(body->narrow && body->wide);
    }
}

TEST_F(OperatingSystemRecord, AsksWithAnEmptyRecordOfItsFullSize) {
    TheOperatingSystem();
    EXPECT_EQ(VersionCall::s_askedSize, sizeof(OSVERSIONINFOEXW));
    EXPECT_TRUE(VersionCall::s_askedBlank);
}

TEST_F(OperatingSystemRecord, IsFilledOnce) {
    const OperatingSystem& record = TheOperatingSystem();
    m_calls->getSystemMetrics = nullptr; // nobody asks again
    EXPECT_EQ(&TheOperatingSystem(), &record);
    EXPECT_EQ(&TheOperatingSystem(), &record);
    EXPECT_EQ(VersionCall::s_calls, 1);
    ExpectFilled(record);
}

TEST_F(OperatingSystemRecord, StaysUnfilledUntilTheSystemAnswers) {
    VersionCall::s_failures = 2;
    ExpectUnfilled(TheOperatingSystem());
    ExpectUnfilled(TheOperatingSystem());
    ExpectFilled(TheOperatingSystem());
    EXPECT_EQ(VersionCall::s_calls, 3);
}

TEST_F(OperatingSystemRecord, IsNotHandedOutWhileAnotherThreadFillsIt) {
    VersionCall::s_held = true;
    std::thread filler([] { TheOperatingSystem(); });
    while (VersionCall::s_calls == 0) {
        std::this_thread::yield();
    }
    std::atomic<bool> returned{false};
    bool filled = false;
    std::thread other([&] {
        filled = TheOperatingSystem().filled;
        returned = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(returned);
    VersionCall::s_held = false;
    filler.join();
    other.join();
    EXPECT_TRUE(filled);
    EXPECT_EQ(VersionCall::s_calls, 1);
}

TEST_F(OperatingSystemRecord, ThreadsThatAskAtOnceFillItOnce) {
    std::atomic<bool> go{false};
    std::atomic<int> filled{0};
    std::vector<std::thread> threads;
    for (int count = 0; count < 16; ++count) {
        threads.emplace_back([&] {
            while (!go) {
                std::this_thread::yield();
            }
            filled += TheOperatingSystem().filled ? 1 : 0;
        });
    }
    go = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(filled, 16);
    EXPECT_EQ(VersionCall::s_calls, 1);
    ExpectFilled(TheOperatingSystem());
}

TEST_F(OperatingSystemRecord, AFailureOfOneThreadLeavesTheFillingToTheNext) {
    VersionCall::s_failures = 1;
    VersionCall::s_held = true;
    std::thread firstThread([] { TheOperatingSystem(); });
    while (VersionCall::s_calls == 0) {
        std::this_thread::yield();
    }
    bool secondFilled = false;
    std::thread secondThread([&] { secondFilled = TheOperatingSystem().filled; });
    VersionCall::s_held = false;
    firstThread.join();
    secondThread.join();
    EXPECT_TRUE(secondFilled);
    EXPECT_EQ(VersionCall::s_calls, 2);
    ExpectFilled(TheOperatingSystem());
}

} // namespace
