// Activating the server's classes, calling their operations, and binding to a printer.
#pragma once

#include <DriverAutomation.h>

#include <string_view>
#include <utility>

#include "automation/Owners.h"
#include "core/OString.h"

namespace kemba {

/// Creates an instance of the class in any context, runs it, and asks it for the interface, which the result
/// points to. Null when the object lacks the interface or a success comes without an object (the first call
/// through it raises E_POINTER instead); any other failure throws ComError without error information.
ComPtr<IUnknown> ActivateObject(REFCLSID classId, REFIID interfaceId);

/// Throws ComError when `status` is a failure, with the error information that `called`, if there is one,
/// supports for the interface.
void CheckCall(HRESULT status, IUnknown* called, REFIID interfaceId);

/// A text as an argument, never null; throws ComError(E_OUTOFMEMORY) when it cannot be allocated.
OwnedBstr TextArgument(std::wstring_view text);

/// `ActivateObject`, typed.
template<class Class, class Interface>
ComPtr<Interface> Activate() {
    return ComPtr<Interface>(
        static_cast<Interface*>(ActivateObject(__uuidof(Class), __uuidof(Interface)).Detach()));
}

/// Calls an operation through the interface table; throws ComError for a null pointer and for a failing
/// status.
template<class Interface, class... Parameters, class... Arguments>
void Call(const ComPtr<Interface>& object, HRESULT (Interface::*operation)(Parameters...),
          Arguments&&... arguments) {
    CheckCall(object ? (object.Get()->*operation)(std::forward<Arguments>(arguments)...) : E_POINTER,
              object.Get(), __uuidof(Interface));
}

/// Calls an operation that gives a text; a null BSTR counts as empty.
template<class Interface>
OString CallForText(const ComPtr<Interface>& object, HRESULT (Interface::*operation)(BSTR*)) {
    OwnedBstr text;
    Call(object, operation, text.Put());
    return text.Text();
}

/// Calls an operation that gives a sub-object; the result may be null.
template<class Interface, class Part>
ComPtr<Part> CallForObject(const ComPtr<Interface>& object, HRESULT (Interface::*operation)(Part**)) {
    ComPtr<Part> part;
    Call(object, operation, part.Put());
    return part;
}

/// Calls an operation that takes a text.
template<class Interface>
void CallWithText(const ComPtr<Interface>& object, HRESULT (Interface::*operation)(BSTR),
                  const OString& text) {
    Call(object, operation, TextArgument(text.Wide()).Get());
}

/// A fresh automation object, bound to the printer; throws ComError.
ComPtr<IDriverAutomation> ActivateForPrinter(const OString& printerName);

} // namespace kemba
