// The seam to the platform: what stands behind it by default.
#include <gtest/gtest.h>

#include "core/SystemCalls.h"
#include "core/SystemLibraries.h"

namespace {

TEST(SystemCalls, AreThePlatformsOwn) {
    const OCore::SystemCalls& calls = OCore::TheSystemCalls();
    EXPECT_EQ(calls.getTickCount64, &::GetTickCount64);
    EXPECT_EQ(calls.getVersionEx, &::GetVersionExW);
    EXPECT_EQ(calls.getSystemMetrics, &::GetSystemMetrics);
    EXPECT_EQ(calls.getProfileString, &::GetProfileStringW);
    EXPECT_EQ(calls.lcMapString, &::LCMapStringW);
    EXPECT_EQ(calls.deregisterEventSource, &::DeregisterEventSource);
    EXPECT_EQ(calls.enumPrinters, &::EnumPrintersW);
}

TEST(SystemCalls, FindTheDefaultPrinterCallByItsOrdinal) {
    auto* const byName = reinterpret_cast<void*>(
        GetProcAddress(OCore::LoadSystemLibrary("winspool.drv"), "GetDefaultPrinterW"));
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(reinterpret_cast<void*>(OCore::TheSystemCalls().getDefaultPrinter), byName);
}

} // namespace
