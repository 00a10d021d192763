// The main object: one printer of the spooler.
#pragma once

#include <DriverAutomation.h>

#include <memory>
#include <string>

#include "core/OSynchronizer.h"
#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Bound to one printer by PutPrinterName; until then every operation answers E_UNEXPECTED, and so does a
/// second binding. An unknown printer's name leaves the object unbound.
class DriverAutomationObject final : public AutomationObject<IDriverAutomation> {
  public:
    /// Throws Failure.
    explicit DriverAutomationObject(const ServerContext& context);

    HRESULT STDMETHODCALLTYPE PutPrinterName(BSTR name) noexcept override;
    HRESULT STDMETHODCALLTYPE SendFile(BSTR path, BSTR documentName) noexcept override;
    HRESULT STDMETHODCALLTYPE PerformAction(LONG action, VARIANT request) noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved4() noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved5() noexcept override;
    HRESULT STDMETHODCALLTYPE GetShareName(BSTR* name) noexcept override;
    HRESULT STDMETHODCALLTYPE PutShareName(BSTR name) noexcept override;
    HRESULT STDMETHODCALLTYPE GetPortName(BSTR* name) noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved9() noexcept override;
    HRESULT STDMETHODCALLTYPE GetModelName(BSTR* name) noexcept override;
    HRESULT STDMETHODCALLTYPE GetComment(BSTR* comment) noexcept override;
    HRESULT STDMETHODCALLTYPE PutComment(BSTR comment) noexcept override;
    HRESULT STDMETHODCALLTYPE GetLocation(BSTR* location) noexcept override;
    HRESULT STDMETHODCALLTYPE PutLocation(BSTR location) noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved15() noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved16() noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved17() noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved18() noexcept override;
    HRESULT STDMETHODCALLTYPE GetDriverVersion(BSTR* version) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDriverVersionDetail(BSTR* detail) noexcept override;
    HRESULT STDMETHODCALLTYPE GetPrinterQueue(IPrinterQueue** queue) noexcept override;
    HRESULT STDMETHODCALLTYPE GetPrinterInformation(IPrinterInformation** information) noexcept override;
    HRESULT STDMETHODCALLTYPE GetSettings(IDriverSettings** settings) noexcept override;

  private:
    ~DriverAutomationObject() override = default;

    std::shared_ptr<const Printer> BoundPrinter() const noexcept override;
    /// The bound printer, never null. Throws Failure.
    std::shared_ptr<const Printer> NeedPrinter() const;
    HRESULT AnswerText(const wchar_t* operation, BSTR* out,
                       std::wstring PrinterDescription::* text) const noexcept;

    const ServerContext m_context;
    mutable OCriticalSection m_lock; // guards the pointer, not the printer
    std::shared_ptr<const Printer> m_printer;
};

} // namespace kemba::substitute
