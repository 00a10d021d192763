// Calls by name, as scripts make them.
#include "substitute/objects/LateBinding.h"

#include <oleauto.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"
#include "substitute/base/VariantArgument.h"

namespace kemba::substitute {
namespace {

/// One argument of an operation, as far as it concerns late binding.
struct Argument {
    bool optional = false;
    VARTYPE out = VT_EMPTY; ///< type of what is handed out through it; VT_EMPTY: it is an [in] argument
};
/// The last one alone may be an [out] argument.
using Operation = std::vector<Argument>;

Argument ArgumentFrom(const ELEMDESC& element) {
    const USHORT flags = element.paramdesc.wParamFlags;
    Argument argument;
    argument.optional = (flags & PARAMFLAG_FOPT) != 0;
    if ((flags & PARAMFLAG_FOUT) && element.tdesc.vt == VT_PTR) {
        const VARTYPE pointed = element.tdesc.lptdesc->vt;
        argument.out =
            pointed == VT_PTR ? static_cast<VARTYPE>(VT_DISPATCH) : pointed; // every object is dual
    }
    return argument;
}

/// The operation of that identifier; none for any other member.
std::optional<Operation> FindOperation(ITypeInfo& types, DISPID member) {
    const auto release = [&](FUNCDESC* function) { types.ReleaseFuncDesc(function); };
    FUNCDESC* described = nullptr;
    for (UINT index = 0; SUCCEEDED(types.GetFuncDesc(index, &described)); ++index) {
        const std::unique_ptr<FUNCDESC, decltype(release)> function(described, release);
        if (function->memid != member || (function->wFuncFlags & FUNCFLAG_FRESTRICTED)) {
            continue; // another one, or the object's inner life
        }
        Operation operation;
        for (SHORT argument = 0; argument < function->cParams; ++argument) {
            operation.push_back(ArgumentFrom(function->lprgelemdescParam[argument]));
        }
        return operation;
    }
    return std::nullopt;
}

/// What the caller gave for each argument of an operation, null where nothing.
class GivenArguments {
  public:
    GivenArguments(const DISPPARAMS& parameters, std::size_t count, UINT* wrongArgument)
        : m_parameters(parameters), m_given(count), m_wrong(wrongArgument) {}

    /// Brings those with and those without a name into the operation's order. The status of a refusal.
    HRESULT Sort() {
        const UINT named = m_parameters.cNamedArgs;
        const UINT all = m_parameters.cArgs;
        if (named > all || (all != 0 && !m_parameters.rgvarg) ||
            (named != 0 && !m_parameters.rgdispidNamedArgs)) {
            return E_INVALIDARG;
        }
        if (all > m_given.size()) {
            return DISP_E_BADPARAMCOUNT;
        }
        for (UINT index = named; index < all; ++index) {
            m_given[all - 1 - index] = &m_parameters.rgvarg[index]; // the last one comes first
        }
        for (UINT index = 0; index < named; ++index) {
            const auto place = static_cast<ULONG>(m_parameters.rgdispidNamedArgs[index]);
            if (place >= m_given.size()) {
                return Refuse(&m_parameters.rgvarg[index], DISP_E_PARAMNOTFOUND);
            }
            if (m_given[place]) {
                return DISP_E_BADPARAMCOUNT;
            }
            m_given[place] = &m_parameters.rgvarg[index];
        }
        return S_OK;
    }

    const VARIANTARG* operator[](std::size_t place) const { return m_given[place]; }

    /// Hands the status on, after telling the caller which of its arguments is to blame.
    HRESULT Refuse(const VARIANTARG* argument, HRESULT status) const {
        if (m_wrong && argument) {
            *m_wrong = static_cast<UINT>(argument - m_parameters.rgvarg);
        }
        return status;
    }

  private:
    const DISPPARAMS& m_parameters;
    std::vector<const VARIANTARG*> m_given;
    UINT* const m_wrong;
};

/// Whether HandOver() can put a value of that type there.
bool CanTake(const VARIANTARG& place, VARTYPE out) {
    const bool known = out == VT_BSTR || out == VT_DISPATCH || out == VT_BOOL;
    return place.byref && (place.vt == (VT_BYREF | VT_VARIANT) || (known && place.vt == (VT_BYREF | out)));
}

/// Hands the value over into the caller's variable, whose former content is released.
HRESULT HandOver(OwnedVariant& value, const VARIANTARG& place) {
    const VARTYPE type = value.Get().vt;
    if (place.vt == (VT_BYREF | VT_VARIANT)) {
        VARIANT former = *place.pvarVal;
        const HRESULT released = VariantClear(&former);
        if (SUCCEEDED(released)) { // an array in use stays
            *place.pvarVal = value.Detach();
        }
        return released;
    }
    if (type == VT_BSTR) {
        SysFreeString(std::exchange(*place.pbstrVal, value.Detach().bstrVal));
    } else if (type == VT_DISPATCH) {
        const ComPtr<IDispatch> former(std::exchange(*place.ppdispVal, value.Detach().pdispVal));
    } else if (type == VT_BOOL) {
        *place.pboolVal = value.Detach().boolVal;
    }
    return S_OK;
}

HRESULT Invoke(IDispatch& object, ITypeInfo& types, DISPID member, const DISPPARAMS& parameters,
               VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) {
    const std::optional<Operation> operation = FindOperation(types, member);
    if (!operation) {
        return DISP_E_MEMBERNOTFOUND;
    }
    const std::size_t count = operation->size();
    GivenArguments given(parameters, count, wrongArgument);
    if (const HRESULT sorted = given.Sort(); FAILED(sorted)) {
        return sorted;
    }

    std::vector<VARIANTARG> complete(count); // the last one comes first
    OwnedVariant handedOut;
    const VARIANTARG* place = nullptr; // of the caller's, for what is handed out
    for (std::size_t index = 0; index < count; ++index) {
        const Argument& argument = (*operation)[index];
        const VARIANTARG* const here = given[index];
        const bool leftOut = !here || IsLeftOut(*here);
        VARIANTARG& passed = complete[count - 1 - index];
        if (argument.out != VT_EMPTY) {
            if (leftOut && !result) {
                return DISP_E_BADPARAMCOUNT; // nobody wants it
            }
            if (!leftOut && !CanTake(*here, argument.out)) {
                return given.Refuse(here, DISP_E_TYPEMISMATCH);
            }
            place = leftOut ? nullptr : here;
            VARIANT& value = *handedOut.Put();
            value.vt = argument.out;
            passed.vt = static_cast<VARTYPE>(VT_BYREF | argument.out);
            passed.byref = static_cast<void*>(&value.byref); // all kinds of value begin at the same address
        } else if (!leftOut) {
            passed = *here;
        } else if (argument.optional) {
            passed.vt = VT_ERROR;
            passed.scode = DISP_E_PARAMNOTFOUND;
        } else {
            return here ? given.Refuse(here, DISP_E_PARAMNOTOPTIONAL) : DISP_E_BADPARAMCOUNT;
        }
    }

    DISPPARAMS ordered = {complete.data(), nullptr, static_cast<UINT>(count), 0};
    auto wrong = static_cast<UINT>(count);
    const HRESULT status =
        DispInvoke(&object, &types, member, DISPATCH_METHOD, &ordered, nullptr, exception, &wrong);
    if (FAILED(status)) {
        return wrong < count ? given.Refuse(given[count - 1 - wrong], status) : status;
    }
    // From here on the object may be gone: the caller's variable may have held it.
    if (place) {
        return HandOver(handedOut, *place);
    }
    if (result) {
        *result = handedOut.Detach();
    }
    return status;
}

} // namespace

HRESULT InvokeByName(IDispatch& object, ITypeInfo& types, DISPID member, WORD flags, DISPPARAMS* parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) noexcept {
    if (result) {
        VariantInit(result); // the place may hold anything
    }
    if (!parameters) {
        return E_INVALIDARG;
    }
    if (!(flags & DISPATCH_METHOD) || (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF))) {
        return DISP_E_MEMBERNOTFOUND; // there are no properties
    }
    try {
        return Invoke(object, types, member, *parameters, result, exception, wrongArgument);
    } catch (...) {
        return CurrentFailure().status;
    }
}

} // namespace kemba::substitute
