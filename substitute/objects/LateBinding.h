// Calls by name, as scripts make them.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace kemba::substitute {

/// IDispatch::Invoke for an object of a dual interface whose type information this is. Beyond what the system
/// does, an operation's [out] argument may also be an untyped variable by reference, as VBScript has no other
/// one, or be left out: then it is the call's result, for languages that pass nothing by reference.
HRESULT InvokeByName(IDispatch& object, ITypeInfo& types, DISPID member, WORD flags, DISPPARAMS* arguments,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) noexcept;

} // namespace kemba::substitute
