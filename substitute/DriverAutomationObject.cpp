// The main object's operations in interface order.
#include "substitute/DriverAutomationObject.h"

#include "substitute/DriverSettingsObject.h"
#include "substitute/PrinterInformationObject.h"

namespace kemba::substitute {

DriverAutomationObject::DriverAutomationObject(const ServerContext& context)
    : AutomationObject(context), m_context(context) {}

HRESULT DriverAutomationObject::PutPrinterName(BSTR name) noexcept {
    return Answer(L"PutPrinterName", [&] {
        const auto refuseSecondName = [&] {
            if (m_printer) {
                throw Failure{E_UNEXPECTED, L"the object is bound to this printer for good"};
            }
        };
        {
            const OScopedLock hold(m_lock);
            refuseSecondName();
        }
        // Opening may block for long; another caller's binding may come first.
        auto printer = std::make_shared<const Printer>(m_context.printers, name ? name : L"");
        const OScopedLock hold(m_lock);
        refuseSecondName();
        m_printer = std::move(printer);
    });
}

HRESULT DriverAutomationObject::SendFile(BSTR, BSTR) noexcept {
    return Unavailable(L"SendFile");
}

HRESULT DriverAutomationObject::PerformAction(LONG, VARIANT) noexcept {
    return Unavailable(L"PerformAction");
}

HRESULT DriverAutomationObject::Reserved4() noexcept {
    return Unavailable(L"Reserved4");
}

HRESULT DriverAutomationObject::Reserved5() noexcept {
    return Unavailable(L"Reserved5");
}

HRESULT DriverAutomationObject::GetShareName(BSTR* name) noexcept {
    return AnswerText(L"GetShareName", name, &PrinterDescription::shareName);
}

HRESULT DriverAutomationObject::PutShareName(BSTR) noexcept {
    return Unavailable(L"PutShareName");
}

HRESULT DriverAutomationObject::GetPortName(BSTR* name) noexcept {
    return AnswerText(L"GetPortName", name, &PrinterDescription::portName);
}

HRESULT DriverAutomationObject::Reserved9() noexcept {
    return Unavailable(L"Reserved9");
}

HRESULT DriverAutomationObject::GetModelName(BSTR* name) noexcept {
    return AnswerText(L"GetModelName", name, &PrinterDescription::modelName);
}

HRESULT DriverAutomationObject::GetComment(BSTR* comment) noexcept {
    return AnswerText(L"GetComment", comment, &PrinterDescription::comment);
}

HRESULT DriverAutomationObject::PutComment(BSTR) noexcept {
    return Unavailable(L"PutComment");
}

HRESULT DriverAutomationObject::GetLocation(BSTR* location) noexcept {
    return AnswerText(L"GetLocation", location, &PrinterDescription::location);
}

HRESULT DriverAutomationObject::PutLocation(BSTR) noexcept {
    return Unavailable(L"PutLocation");
}

HRESULT DriverAutomationObject::Reserved15() noexcept {
    return Unavailable(L"Reserved15");
}

HRESULT DriverAutomationObject::Reserved16() noexcept {
    return Unavailable(L"Reserved16");
}

HRESULT DriverAutomationObject::Reserved17() noexcept {
    return Unavailable(L"Reserved17");
}

HRESULT DriverAutomationObject::Reserved18() noexcept {
    return Unavailable(L"Reserved18");
}

HRESULT DriverAutomationObject::GetDriverVersion(BSTR* version) noexcept {
    return Unavailable(L"GetDriverVersion", version);
}

HRESULT DriverAutomationObject::GetDriverVersionDetail(BSTR* detail) noexcept {
    return Unavailable(L"GetDriverVersionDetail", detail);
}

HRESULT DriverAutomationObject::GetPrinterQueue(IPrinterQueue** queue) noexcept {
    return Unavailable(L"GetPrinterQueue", queue);
}

HRESULT DriverAutomationObject::GetPrinterInformation(IPrinterInformation** information) noexcept {
    return Answer(L"GetPrinterInformation", information,
                  [&] { *information = Make<PrinterInformationObject>(m_context, NeedPrinter()).release(); });
}

HRESULT DriverAutomationObject::GetSettings(IDriverSettings** settings) noexcept {
    return Answer(L"GetSettings", settings,
                  [&] { *settings = Make<DriverSettingsObject>(m_context, NeedPrinter()).release(); });
}

std::shared_ptr<const Printer> DriverAutomationObject::BoundPrinter() const noexcept {
    const OScopedLock hold(m_lock);
    return m_printer;
}

std::shared_ptr<const Printer> DriverAutomationObject::NeedPrinter() const {
    auto printer = BoundPrinter();
    if (!printer) {
        throw Failure{E_UNEXPECTED, L"no printer has been named yet"};
    }
    return printer;
}

HRESULT DriverAutomationObject::AnswerText(const wchar_t* operation, BSTR* out,
                                           std::wstring PrinterDescription::*text) const noexcept {
    return Answer(operation, out, [&] { HandOut(NeedPrinter()->Describe().*text, out); });
}

} // namespace kemba::substitute
