// A printer's settings as they are saved and restored.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

/// The key that holds a driver's own data of a printer; only it and what is below it counts as settings.
inline constexpr wchar_t kDriverDataKey[] = L"PrinterDriverData";

/// Which driver settings belong to.
struct DriverIdentity {
    std::wstring name;
    std::uint64_t version = 0; ///< 0 when the driver gives none

    bool operator==(const DriverIdentity&) const = default;
};

/// Everything that a settings file holds.
struct Settings {
    DriverIdentity driver;
    std::optional<Bytes> globalMode;  ///< DEVMODEW of the printer, for all users
    std::optional<Bytes> userMode;    ///< DEVMODEW of the user; none when the user follows the printer's
    std::vector<PrinterValue> values; ///< ascending by ComparePlaces()

    bool operator==(const Settings&) const = default;
};

/// Below 0, 0 or above 0 as the place of `left` (key, then name) comes before, is, or comes after that of
/// `right`; letter case does not count, as in the registry.
int ComparePlaces(const PrinterValue& left, const PrinterValue& right);

} // namespace kemba::substitute
