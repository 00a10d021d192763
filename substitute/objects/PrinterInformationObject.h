// A printer's present state.
#pragma once

#include <DriverAutomation.h>

#include <memory>
#include <utility>

#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/StatusText.h"

namespace kemba::substitute {

/// Shares the printer with the object that made it, and outlives that one if need be.
class PrinterInformationObject final : public AutomationObject<IPrinterInformation> {
  public:
    /// Throws Failure.
    PrinterInformationObject(const ServerContext& context, std::shared_ptr<const Printer> printer)
        : AutomationObject(context), m_printer(std::move(printer)) {}

    /// The state as the spooler knows it at this moment, see StatusText().
    HRESULT STDMETHODCALLTYPE GetStatus(BSTR* status) noexcept override {
        return Answer(L"GetStatus", status, [&] {
            const PrinterDescription now = m_printer->Describe();
            HandOut(StatusText(now.status, now.attributes, now.jobs), status);
        });
    }

  private:
    ~PrinterInformationObject() override = default;
    std::shared_ptr<const Printer> BoundPrinter() const noexcept override { return m_printer; }

    const std::shared_ptr<const Printer> m_printer;
};

} // namespace kemba::substitute
