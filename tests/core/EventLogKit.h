// What tests of the event log need: a clock of their own, and masks in the registry.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "core/OString.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/SetAside.h"

namespace kit {

/// Stops the clock; it shows what it is told to, until the end of its scope.
class StoppedClock {
  public:
    explicit StoppedClock(std::uint64_t tick) {
        Show(tick);
        m_calls->getTickCount64 = Tick;
    }
    void Show(std::uint64_t tick) { s_tick = tick; }

  private:
    static ULONGLONG WINAPI Tick() { return s_tick; }

    inline static std::atomic<std::uint64_t> s_tick{0};
    SystemCallsPreset m_calls;
};

/// The whole mask that a log runs with.
template<class Log>
std::uint32_t MaskOf(Log&& log) {
    std::uint32_t mask = 0;
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1) {
        mask |= log.IsEnabled(bit) ? bit : 0;
    }
    return mask;
}

/// The stored mask of a source that no other test uses; absent at first.
class StoredMask : public RegistryPreset {
  public:
    explicit StoredMask(const std::wstring& suffix = L"")
        : RegistryPreset(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks", NameOf(suffix)),
          m_source(NameOf(suffix).c_str()) {}

    const OString& Source() const { return m_source; }
    void SetMask(std::uint32_t mask) const { Set(RegistryData::OfDword(mask)); }

  private:
    static std::wstring NameOf(const std::wstring& suffix) {
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        return L"Kemba " + std::wstring(test.begin(), test.end()) + suffix;
    }

    OString m_source;
};

} // namespace kit
