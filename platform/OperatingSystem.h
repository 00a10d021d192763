// Name, edition and build of the running system.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "core/OString.h"

namespace kemba {

/// What is known of the running system; all empty and zero until `filled`.
struct OperatingSystem {
    OString name;
    OString edition;   ///< empty where no rule applies
    OString buildText; ///< "Build 7601 (Service Pack 1)"
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    OString servicePackText;
    std::uint32_t servicePack = 0; ///< its major number
    std::uint32_t platform = 0;
    std::uint8_t productType = 0; ///< 1 workstation, 2 domain controller, 3 server
    std::atomic<bool> filled{false};
};

/// The process-wide record, filled by the first request at which the system tells its version. Any thread may
/// ask, and read what it gets: the texts have both their forms.
const OperatingSystem& TheOperatingSystem();

/// The display name for a version.
OString NameOfSystem(const OSVERSIONINFOEXW& version);
/// The edition for a version; `metric` answers as GetSystemMetrics does, and is asked only where it matters.
OString EditionOfSystem(const OSVERSIONINFOEXW& version, decltype(&::GetSystemMetrics) metric);
/// The build number's low 16 bits, and the service pack if there is one.
OString BuildTextOfSystem(const OSVERSIONINFOEXW& version);

} // namespace kemba
