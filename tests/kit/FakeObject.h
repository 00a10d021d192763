// The COM side of the fake server's objects: one contract interface, error information, the running state.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <objidl.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/FakeIdentity.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// An object with one dual interface, made with no reference; it goes with the last one.
template<class Interface>
class FakeObject : public Interface, public ISupportErrorInfo, public IRunnableObject, public FakeIdentity {
  public:
    FakeObject(std::shared_ptr<ServerState> state, std::string_view className, int number)
        : FakeIdentity(std::move(state), className, ContractInterfaceName(__uuidof(Interface)), number) {
        Enlist(Identity());
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = Find(id);
        if (!*object) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return DropReference(Identity()); }

    // Dispatch is there because the interfaces are dual; a client of the contract calls early bound.
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return CallReserved("GetIDsOfNames");
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return CallReserved("Invoke");
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
        AddEvent("InterfaceSupportsErrorInfo(" + std::string(ContractInterfaceName(id)) + ")");
        return Support() == ErrorInfoSupport::Yes && IsEqualIID(id, __uuidof(Interface)) ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE GetRunningClass(CLSID* id) override {
        *id = {};
        return E_UNEXPECTED;
    }
    HRESULT STDMETHODCALLTYPE Run(IBindCtx*) override {
        AddEvent("Run()");
        return EventStatus("Run");
    }
    WINBOOL STDMETHODCALLTYPE IsRunning() override { return TRUE; }
    HRESULT STDMETHODCALLTYPE LockRunning(WINBOOL, WINBOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetContainedObject(WINBOOL) override { return S_OK; }

  private:
    IUnknown* Identity() { return static_cast<Interface*>(this); }

    /// The interface without a reference of its own, or null.
    void* Find(REFIID id) {
        if (IsEqualIID(id, __uuidof(IUnknown)) || IsEqualIID(id, __uuidof(IDispatch))) {
            return static_cast<Interface*>(this);
        }
        if (IsEqualIID(id, __uuidof(IRunnableObject))) {
            return static_cast<IRunnableObject*>(this);
        }
        if (IsEqualIID(id, __uuidof(ISupportErrorInfo))) {
            return Support() == ErrorInfoSupport::Absent ? nullptr : static_cast<ISupportErrorInfo*>(this);
        }
        const std::string_view name = ContractInterfaceName(id);
        if (name.empty()) {
            return nullptr;
        }
        AddEvent("QueryInterface(" + std::string(name) + ")");
        const bool offered = IsEqualIID(id, __uuidof(Interface)) && SUCCEEDED(EventStatus("QueryInterface"));
        return offered ? static_cast<Interface*>(this) : nullptr;
    }
};

} // namespace kit
