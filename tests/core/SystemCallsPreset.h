// Other answers of platform calls, for as long as a test needs them.
#pragma once

#include "core/SystemCalls.h"

namespace kit {

/// Puts the calls back as they were at the end of its scope.
class SystemCallsPreset {
  public:
    SystemCallsPreset() : m_before(OCore::TheSystemCalls()) {}
    SystemCallsPreset(const SystemCallsPreset&) = delete;
    SystemCallsPreset& operator=(const SystemCallsPreset&) = delete;
    ~SystemCallsPreset() { OCore::TheSystemCalls() = m_before; }

    OCore::SystemCalls* operator->() const { return &OCore::TheSystemCalls(); }

  private:
    OCore::SystemCalls m_before;
};

} // namespace kit
