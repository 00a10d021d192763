// A printer's driver settings.
#pragma once

#include <DriverAutomation.h>

#include <memory>
#include <utility>

#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Shares the printer with the object that made it, and outlives that one if need be. The optional argument
/// of each operation has to be omitted (VT_ERROR with DISP_E_PARAMNOTFOUND, VT_EMPTY or VT_NULL, itself or by
/// reference), which means all settings; anything else is answered with E_INVALIDARG.
class DriverSettingsObject final : public AutomationObject<IDriverSettings> {
  public:
    /// Throws Failure.
    DriverSettingsObject(const ServerContext& context, std::shared_ptr<const Printer> printer)
        : AutomationObject(context), m_printer(std::move(printer)) {}

    /// Checks the whole file before it changes anything.
    HRESULT STDMETHODCALLTYPE ImportSettings(BSTR path, VARIANT option) noexcept override;
    /// Makes or replaces the file.
    HRESULT STDMETHODCALLTYPE ExportSettings(BSTR path, VARIANT option) noexcept override;
    HRESULT STDMETHODCALLTYPE ResetSettings(VARIANT option) noexcept override;

  private:
    ~DriverSettingsObject() override = default;
    std::shared_ptr<const Printer> BoundPrinter() const noexcept override { return m_printer; }

    const std::shared_ptr<const Printer> m_printer;
};

} // namespace kemba::substitute
