// Calls by name, as scripts make them.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace kemba::substitute {

/// IDispatch::Invoke for an object of a dual interface whose type information this is: for operations, not
/// for properties, with arguments by place or by name. An operation's [out] argument is a variable by
/// reference, of its type or untyped, as VBScript has no other one; what it held is released, unless the call
/// fails. Or it is left out: then it is the call's result, for languages that pass nothing by reference.
/// `result` may point to anything and is empty where there is none. A call that does not fit is refused and
/// not made.
HRESULT InvokeByName(IDispatch& object, ITypeInfo& types, DISPID member, WORD flags, DISPPARAMS* parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) noexcept;

} // namespace kemba::substitute
