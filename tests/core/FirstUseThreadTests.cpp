// The first use of what the process has once, by several threads. The test needs a process of its own, as
// ctest gives it.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "core/ORegistry.h"
#include "tests/kit/AtOnce.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

constexpr int kThreads = 8;

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
