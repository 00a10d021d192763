// The first use of what the process has once, by several threads. Each test needs a process of its own, as
// ctest gives it.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <string>

#include "core/ORegistry.h"
#include "core/SystemCalls.h"
#include "tests/kit/AtOnce.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

constexpr int kThreads = 8;

TEST(FirstUse, OfTheSystemCallsGivesAllThreadsTheSame) {
    std::array<OCore::SystemCalls*, kThreads> calls{};
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int thread) {
        calls[static_cast<std::size_t>(thread)] = &OCore::TheSystemCalls();
        wrong += OCore::TheSystemCalls().getTickCount64 == &::GetTickCount64 &&
                         OCore::TheSystemCalls().getDefaultPrinter != nullptr
                     ? 0
                     : 1;
    });
    EXPECT_EQ(wrong, 0);
    for (const OCore::SystemCalls* const each : calls) {
        EXPECT_EQ(each, calls[0]);
    }
}

TEST(FirstUse, OfTheRegistrysAliasesFindsTheValueInEveryThread) {
    const RegistryPreset value(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers",
                               L"Kemba first use " + std::to_wstring(GetCurrentProcessId()));
    value.Set(RegistryData::OfText(L"found"));
    const std::wstring path = L"LOCAL:Kemba first use " + std::to_wstring(GetCurrentProcessId());
    std::atomic<int> found{0};
    AtOnce(kThreads, [&](int) {
        found += ORegistry().ReadString(path.c_str(), L"missing") == OString(L"found") ? 1 : 0;
    });
    EXPECT_EQ(found, kThreads);
}

} // namespace
