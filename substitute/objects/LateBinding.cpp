// Calls by name, as scripts make them.
#include "substitute/objects/LateBinding.h"

#include <oleauto.h>

#include <memory>
#include <new>

namespace kemba::substitute {
namespace {

/// What an operation's last argument is, as far as it concerns late binding.
struct LastArgument {
    UINT count = 0;        ///< how many arguments the operation has
    VARTYPE out = VT_NULL; ///< type of what it hands out through the last one; VT_NULL: it hands out nothing
};

LastArgument LastArgumentOf(const FUNCDESC& function) {
    LastArgument last;
    last.count = static_cast<UINT>(function.cParams);
    if (last.count == 0) {
        return last;
    }
    const ELEMDESC& element = function.lprgelemdescParam[last.count - 1];
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FOUT) && element.tdesc.vt == VT_PTR) {
        const VARTYPE pointed = element.tdesc.lptdesc->vt;
        last.out = pointed == VT_PTR ? static_cast<VARTYPE>(VT_DISPATCH) : pointed; // every object is dual
    }
    return last;
}

LastArgument FindLastArgument(ITypeInfo& types, DISPID member) {
    FUNCDESC* function = nullptr;
    for (UINT index = 0; SUCCEEDED(types.GetFuncDesc(index, &function)); ++index) {
        const bool found = function->memid == member;
        const LastArgument last = found ? LastArgumentOf(*function) : LastArgument();
        types.ReleaseFuncDesc(function);
        if (found) {
            return last;
        }
    }
    return {};
}

/// Where the operation's result is to go, if the system does not manage that by itself.
VARIANT* TargetOf(const LastArgument& last, const DISPPARAMS& arguments, VARIANT* result) {
    if (last.out == VT_NULL || arguments.cNamedArgs != 0) {
        return nullptr;
    }
    if (arguments.cArgs == last.count && arguments.rgvarg[0].vt == (VT_BYREF | VT_VARIANT)) {
        return arguments.rgvarg[0].pvarVal; // the last one comes first
    }
    return arguments.cArgs + 1 == last.count ? result : nullptr;
}

} // namespace

HRESULT InvokeByName(IDispatch& object, ITypeInfo& types, DISPID member, WORD flags, DISPPARAMS* arguments,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) noexcept {
    const LastArgument last = arguments ? FindLastArgument(types, member) : LastArgument();
    VARIANT* const target = arguments ? TargetOf(last, *arguments, result) : nullptr;
    if (!target) {
        return DispInvoke(&object, &types, member, flags, arguments, result, exception, wrongArgument);
    }
    VARIANT handedOut = {};
    handedOut.vt = last.out;
    VARIANTARG place = {};
    place.vt = static_cast<VARTYPE>(last.out | VT_BYREF);
    place.byref = &handedOut.byref; // all kinds of value begin at the same address
    const bool leftOut = arguments->cArgs != last.count;
    const std::unique_ptr<VARIANTARG[]> given(new (std::nothrow) VARIANTARG[last.count]);
    if (!given) {
        return E_OUTOFMEMORY;
    }
    given[0] = place;
    for (UINT index = 1; index < last.count; ++index) {
        given[index] = arguments->rgvarg[leftOut ? index - 1 : index];
    }
    DISPPARAMS complete = {given.get(), nullptr, last.count, 0};
    const HRESULT status =
        DispInvoke(&object, &types, member, flags, &complete, nullptr, exception, wrongArgument);
    if (FAILED(status)) {
        VariantClear(&handedOut);
        return status;
    }
    VariantClear(target);
    *target = handedOut;
    return status;
}

} // namespace kemba::substitute
