// The main object's operations in interface order.
#include "substitute/objects/DriverAutomationObject.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/Owners.h"
#include "core/OSynchronizer.h"
#include "substitute/actions/ActionPerformer.h"
#include "substitute/actions/ActionRequest.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/DriverSettingsObject.h"
#include "substitute/objects/PrinterInformationObject.h"
#include "substitute/objects/PrinterQueueObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/DriverVersion.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/SendFile.h"

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
        auto printer = std::make_shared<const Printer>(m_context.spooler, m_context.locks,
                                                       TextFrom(name, L"the printer's name"));
        const OScopedLock hold(m_lock);
        refuseSecondName();
        m_printer = std::move(printer);
    });
}

HRESULT DriverAutomationObject::SendFile(BSTR path, BSTR documentName) noexcept {
    return Answer(L"SendFile", [&] {
        SendFileTo(*NeedPrinter(), TextFrom(path, L"the path"),
                   TextFrom(documentName, L"the document's name"));
    });
}

HRESULT DriverAutomationObject::PerformAction(LONG action, VARIANT request) noexcept {
    return Answer(L"PerformAction", [&] {
        const auto printer = NeedPrinter();
        const ComPtr<IActionRequest> asked = RequestFrom(request);
        asked->SetOutcome({}); // no answer of an earlier action stands if this one fails
        asked->SetOutcome(PerformActionOn(m_context.profiles, *printer, action, asked->IsToBeExecuted()));
    });
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

HRESULT DriverAutomationObject::PutShareName(BSTR name) noexcept {
    return Answer(L"PutShareName",
                  [&] { NeedPrinter()->ChangeShareName(TextFrom(name, L"the share name")); });
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

HRESULT DriverAutomationObject::PutComment(BSTR comment) noexcept {
    return Answer(L"PutComment", [&] { NeedPrinter()->ChangeComment(TextFrom(comment, L"the comment")); });
}

HRESULT DriverAutomationObject::GetLocation(BSTR* location) noexcept {
    return AnswerText(L"GetLocation", location, &PrinterDescription::location);
}

HRESULT DriverAutomationObject::PutLocation(BSTR location) noexcept {
    return Answer(L"PutLocation",
                  [&] { NeedPrinter()->ChangeLocation(TextFrom(location, L"the location")); });
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
    return Answer(L"GetDriverVersion", version,
                  [&] { HandOut(DriverVersionText(NeedPrinter()->DescribeDriver()), version); });
}

HRESULT DriverAutomationObject::GetDriverVersionDetail(BSTR* detail) noexcept {
    return Answer(L"GetDriverVersionDetail", detail,
                  [&] { HandOut(DriverDetailText(NeedPrinter()->DescribeDriver()), detail); });
}

HRESULT DriverAutomationObject::GetPrinterQueue(IPrinterQueue** queue) noexcept {
    return Answer(L"GetPrinterQueue", queue,
                  [&] { *queue = MakeObject<PrinterQueueObject>(m_context, NeedPrinter()).Detach(); });
}

HRESULT DriverAutomationObject::GetPrinterInformation(IPrinterInformation** information) noexcept {
    return Answer(L"GetPrinterInformation", information, [&] {
        *information = MakeObject<PrinterInformationObject>(m_context, NeedPrinter()).Detach();
    });
}

HRESULT DriverAutomationObject::GetSettings(IDriverSettings** settings) noexcept {
    return Answer(L"GetSettings", settings,
                  [&] { *settings = MakeObject<DriverSettingsObject>(m_context, NeedPrinter()).Detach(); });
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
                                           std::wstring PrinterDescription::* text) const noexcept {
    return Answer(operation, out, [&] { HandOut(NeedPrinter()->Describe().*text, out); });
}

} // namespace kemba::substitute
