// Activation and the raising of failed calls.
#include "automation/Activation.h"

#include <objbase.h>
#include <ole2.h>

#include <string_view>

#include "automation/ComError.h"
#include "automation/Owners.h"
#include "core/OString.h"

namespace kemba {
namespace {

constexpr DWORD kAnyContext =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

/// The thread's error information if the object keeps any for the interface, else null.
ComPtr<IErrorInfo> TakeErrorInformation(IUnknown* called, REFIID interfaceId) {
    ComPtr<ISupportErrorInfo> support;
    if (FAILED(called->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(support.Put()))) ||
        !support) {
        return {};
    }
    const bool supported = support->InterfaceSupportsErrorInfo(interfaceId) == S_OK;
    support.Reset();
    ComPtr<IErrorInfo> information;
    if (supported && FAILED(GetErrorInfo(0, information.Put()))) {
        return {};
    }
    return information;
}

} // namespace

ComPtr<IUnknown> ActivateObject(REFCLSID classId, REFIID interfaceId) {
    ComPtr<IUnknown> object;
    ComPtr<IUnknown> result;
    HRESULT status =
        CoCreateInstance(classId, nullptr, kAnyContext, IID_IUnknown, reinterpret_cast<void**>(object.Put()));
    if (SUCCEEDED(status) && !object) {
        return {}; // a class object's false success
    }
    if (SUCCEEDED(status)) {
        status = OleRun(object.Get());
    }
    if (SUCCEEDED(status)) {
        status = object->QueryInterface(interfaceId, reinterpret_cast<void**>(result.Put()));
    }
    if (FAILED(status)) {
        if (status != E_NOINTERFACE) {
            throw ComError(status);
        }
        return {};
    }
    return result;
}

OwnedBstr TextArgument(std::wstring_view text) {
    OwnedBstr argument = OwnedBstr::Copy(text);
    if (!argument) {
        throw ComError(E_OUTOFMEMORY);
    }
    return argument;
}

void CheckCall(HRESULT status, IUnknown* called, REFIID interfaceId) {
    if (FAILED(status)) {
        throw ComError(status, called ? TakeErrorInformation(called, interfaceId) : ComPtr<IErrorInfo>());
    }
}

ComPtr<IDriverAutomation> ActivateForPrinter(const OString& printerName) {
    ComPtr<IDriverAutomation> automation = Activate<DriverAutomation, IDriverAutomation>();
    CallWithText(automation, &IDriverAutomation::PutPrinterName, printerName);
    return automation;
}

} // namespace kemba
