// Calls by name, as languages without the contract's types make them.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kit {

/// A VARIANT that a test makes and looks at; cleared in the end.
struct Value : VARIANT {
    Value() : VARIANT{} {}
    explicit Value(const std::wstring& text) : VARIANT{} {
        vt = VT_BSTR;
        bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    explicit Value(int number) : VARIANT{} {
        vt = VT_I4;
        lVal = number;
    }
    explicit Value(IDispatch* shared) : VARIANT{} {
        vt = VT_DISPATCH;
        pdispVal = shared;
        shared->AddRef();
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }

    std::wstring Text() const {
        return vt == VT_BSTR && bstrVal ? std::wstring(bstrVal, SysStringLen(bstrVal)) : L"(no text)";
    }
};

/// What a failed call tells.
struct Told {
    EXCEPINFO exception = {};
    UINT wrongArgument = 77; ///< where no call has written to

    Told() = default;
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;
    ~Told() {
        for (const BSTR text : {exception.bstrSource, exception.bstrDescription, exception.bstrHelpFile}) {
            SysFreeString(text);
        }
    }
    std::wstring Description() const { return exception.bstrDescription ? exception.bstrDescription : L""; }
};

/// Standard value of an argument that is left out.
inline VARIANT LeftOut() {
    VARIANT argument = {};
    argument.vt = VT_ERROR;
    argument.scode = DISP_E_PARAMNOTFOUND;
    return argument;
}
/// An untyped variable by reference.
inline VARIANT Reference(VARIANT& variable) {
    VARIANT reference = {};
    reference.vt = VT_VARIANT | VT_BYREF;
    reference.pvarVal = &variable;
    return reference;
}
/// A variable of a fixed type by reference.
inline VARIANT Reference(VARTYPE type, void* variable) {
    VARIANT reference = {};
    reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
    reference.byref = variable;
    return reference;
}

inline DISPID IdOf(IDispatch& object, std::wstring name) {
    LPOLESTR names = name.data();
    DISPID member = DISPID_UNKNOWN;
    EXPECT_EQ(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &member), S_OK);
    return member;
}

/// A call with the arguments in the operation's order, flagged as scripts flag one that wants a result.
inline HRESULT Call(IDispatch& object, const std::wstring& name, std::vector<VARIANT> arguments,
                    VARIANT* result = nullptr, Told* told = nullptr,
                    WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET) {
    const std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS given = {const_cast<VARIANT*>(reversed.data()), nullptr, static_cast<UINT>(reversed.size()),
                        0};
    return object.Invoke(IdOf(object, name), IID_NULL, LOCALE_NEUTRAL, flags, &given, result,
                         told ? &told->exception : nullptr, told ? &told->wrongArgument : nullptr);
}

/// A call with named arguments, which come first, and then those without a name, the last one first.
inline HRESULT CallNamed(IDispatch& object, const std::wstring& name, std::vector<DISPID> ids,
                         std::vector<VARIANT> arguments, VARIANT* result = nullptr, Told* told = nullptr,
                         WORD flags = DISPATCH_METHOD) {
    DISPPARAMS given = {arguments.data(), ids.data(), static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(ids.size())};
    return object.Invoke(IdOf(object, name), IID_NULL, LOCALE_NEUTRAL, flags, &given, result,
                         told ? &told->exception : nullptr, told ? &told->wrongArgument : nullptr);
}

} // namespace kit
