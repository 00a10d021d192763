// The seam to the platform: what stands behind it by default.
#include <gtest/gtest.h>

#include "core/SystemCalls.h"
#include "core/SystemLibraries.h"

namespace {

/// As the seam has them: a compiler may take the address of an import or of the jump to it.
const OCore::SystemCalls kPlatformsOwn = {
    .getTickCount64 = &::GetTickCount64,
    .getVersionEx = &::GetVersionExW,
    .getSystemMetrics = &::GetSystemMetrics,
    .getProfileString = &::GetProfileStringW,
    .lcMapString = &::LCMapStringW,
    .deregisterEventSource = &::DeregisterEventSource,
    .enumPrinters = &::EnumPrintersW,
    .findGetDefaultPrinter = &OCore::FindGetDefaultPrinter,
};

TEST(SystemCalls, AreThePlatformsOwn) {
    const OCore::SystemCalls& calls = OCore::TheSystemCalls();
    EXPECT_EQ(calls.getTickCount64, kPlatformsOwn.getTickCount64);
    EXPECT_EQ(calls.getVersionEx, kPlatformsOwn.getVersionEx);
    EXPECT_EQ(calls.getSystemMetrics, kPlatformsOwn.getSystemMetrics);
    EXPECT_EQ(calls.getProfileString, kPlatformsOwn.getProfileString);
    EXPECT_EQ(calls.lcMapString, kPlatformsOwn.lcMapString);
    EXPECT_EQ(calls.deregisterEventSource, kPlatformsOwn.deregisterEventSource);
    EXPECT_EQ(calls.enumPrinters, kPlatformsOwn.enumPrinters);
    EXPECT_EQ(calls.findGetDefaultPrinter, kPlatformsOwn.findGetDefaultPrinter);
}

TEST(SystemCalls, FindTheDefaultPrinterCallByItsOrdinal) {
    auto* const byName = reinterpret_cast<void*>(
        GetProcAddress(OCore::LoadSystemLibrary("winspool.drv"), "GetDefaultPrinterW"));
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(reinterpret_cast<void*>(OCore::TheSystemCalls().findGetDefaultPrinter()), byName);
}

} // namespace
