// A printer's queue.
#pragma once

#include <DriverAutomation.h>
#include <winspool.h>

#include <memory>
#include <utility>

#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Shares the printer with the object that made it, and outlives that one if need be. Pausing a paused queue
/// and the like is no failure.
class PrinterQueueObject final : public AutomationObject<IPrinterQueue> {
  public:
    /// Throws Failure.
    PrinterQueueObject(const ServerContext& context, std::shared_ptr<const Printer> printer)
        : AutomationObject(context), m_printer(std::move(printer)) {}

    HRESULT STDMETHODCALLTYPE Reserved1() noexcept override { return Unavailable(L"Reserved1"); }
    HRESULT STDMETHODCALLTYPE Pause() noexcept override {
        return Answer(L"Pause", [&] { m_printer->Control(PRINTER_CONTROL_PAUSE, L"pausing the queue"); });
    }
    HRESULT STDMETHODCALLTYPE Resume() noexcept override {
        return Answer(L"Resume", [&] { m_printer->Control(PRINTER_CONTROL_RESUME, L"resuming the queue"); });
    }
    /// Deletes all jobs; the one that is being printed may go on.
    HRESULT STDMETHODCALLTYPE Purge() noexcept override {
        return Answer(L"Purge", [&] { m_printer->Control(PRINTER_CONTROL_PURGE, L"purging the queue"); });
    }

  private:
    ~PrinterQueueObject() override = default;
    std::shared_ptr<const Printer> BoundPrinter() const noexcept override { return m_printer; }

    const std::shared_ptr<const Printer> m_printer;
};

} // namespace kemba::substitute
