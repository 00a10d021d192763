// A printer's settings as they are saved and restored.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kemba::substitute {

using Bytes = std::vector<BYTE>;

/// The key that holds a driver's own data of a printer; only it and what is below it counts as settings.
inline constexpr wchar_t kDriverDataKey[] = L"PrinterDriverData";

/// One value of the printer data.
struct PrinterValue {
    std::wstring key;  ///< path from the printer's key, parts separated by backslashes
    std::wstring name; ///< may be empty
    DWORD type = 0;    ///< registry type
    Bytes data;

    bool operator==(const PrinterValue&) const = default;
};

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

/// The same for two names of keys, drivers and the like.
int CompareNames(const std::wstring& left, const std::wstring& right);

/// Size that a DEVMODEW gives itself, private part included; 0 when it is not to be trusted: the record does
/// not fit into `bytes`, or lacks fields that every driver reads.
std::size_t ModeSize(const Bytes& bytes);

/// Clears what stands behind the ends of a device mode's two texts: whoever made it leaves pieces of its
/// memory there, which belong in no file. Does nothing to bytes that are no device mode.
void ClearTextRemains(Bytes& mode);

} // namespace kemba::substitute
