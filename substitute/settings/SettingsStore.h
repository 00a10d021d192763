// One printer's settings: reading them, and changing them wholly or not at all.
#pragma once

#include <string>

#include "substitute/settings/Settings.h"
#include "substitute/spooler/SettingsApi.h"

namespace kemba::substitute {

/// Each operation opens the printer with the rights that it needs. Throws Failure with the spooler's status.
class SettingsStore {
  public:
    /// `api` outlives the object; `printer` is the printer's name.
    SettingsStore(SettingsApi& api, std::wstring printer) : m_api(api), m_printer(std::move(printer)) {}

    Settings Read() const;
    /// Makes the printer's settings those given, see docs/settings-file.md for what cannot be restored.
    /// Refuses those of another driver. When a step fails, those before it are undone.
    void Apply(const Settings& settings) const;
    /// Gives the printer the driver's default device mode, and the user, if there is one of the user's own.
    void Reset() const;

  private:
    SettingsApi& m_api;
    const std::wstring m_printer;
};

} // namespace kemba::substitute
