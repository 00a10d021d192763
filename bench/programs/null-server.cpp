// The contract's classes in the client's own process: every operation succeeds, does nothing, and gives a
// short text.
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>
#include <oleauto.h>

#include <new>

namespace {

/// What every object has in common; it goes with its last reference.
template<class Interface>
class NullObject : public Interface {
  public:
    virtual ~NullObject() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

  private:
    ULONG m_references = 1;
};

HRESULT Give(BSTR* text) {
    *text = SysAllocString(L"1.0.0");
    return *text ? S_OK : E_OUTOFMEMORY;
}

template<class Object, class Interface>
HRESULT GiveObject(Interface** object) {
    *object = new (std::nothrow) Object;
    return *object ? S_OK : E_OUTOFMEMORY;
}

struct Settings : NullObject<IDriverSettings> {
    STDMETHODIMP ImportSettings(BSTR, VARIANT) override { return S_OK; }
    STDMETHODIMP ExportSettings(BSTR, VARIANT) override { return S_OK; }
    STDMETHODIMP ResetSettings(VARIANT) override { return S_OK; }
};

struct Queue : NullObject<IPrinterQueue> {
    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }
    STDMETHODIMP Pause() override { return S_OK; }
    STDMETHODIMP Resume() override { return S_OK; }
    STDMETHODIMP Purge() override { return S_OK; }
};

struct Information : NullObject<IPrinterInformation> {
    STDMETHODIMP GetStatus(BSTR* status) override { return Give(status); }
};

struct Version : NullObject<IVersionInformation> {
    STDMETHODIMP GetVersion(BSTR* version) override { return Give(version); }
    STDMETHODIMP GetVersionDetail(BSTR* detail) override { return Give(detail); }
};

struct Actions : NullObject<IDriverActions> {
    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved3() override { return E_NOTIMPL; }
    STDMETHODIMP PutExecute(VARIANT_BOOL) override { return S_OK; }
    STDMETHODIMP GetSupported(VARIANT_BOOL* supported) override {
        *supported = VARIANT_TRUE;
        return S_OK;
    }
    STDMETHODIMP Reserved6() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved7() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved8() override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplaysInterface(VARIANT_BOOL* displays) override {
        *displays = VARIANT_FALSE;
        return S_OK;
    }
};

struct Automation : NullObject<IDriverAutomation> {
    STDMETHODIMP PutPrinterName(BSTR) override { return S_OK; }
    STDMETHODIMP SendFile(BSTR, BSTR) override { return S_OK; }
    STDMETHODIMP PerformAction(long, VARIANT) override { return S_OK; }
    STDMETHODIMP Reserved4() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved5() override { return E_NOTIMPL; }
    STDMETHODIMP GetShareName(BSTR* name) override { return Give(name); }
    STDMETHODIMP PutShareName(BSTR) override { return S_OK; }
    STDMETHODIMP GetPortName(BSTR* name) override { return Give(name); }
    STDMETHODIMP Reserved9() override { return E_NOTIMPL; }
    STDMETHODIMP GetModelName(BSTR* name) override { return Give(name); }
    STDMETHODIMP GetComment(BSTR* comment) override { return Give(comment); }
    STDMETHODIMP PutComment(BSTR) override { return S_OK; }
    STDMETHODIMP GetLocation(BSTR* location) override { return Give(location); }
    STDMETHODIMP PutLocation(BSTR) override { return S_OK; }
    STDMETHODIMP Reserved15() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved16() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved17() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved18() override { return E_NOTIMPL; }
    STDMETHODIMP GetDriverVersion(BSTR* version) override { return Give(version); }
    STDMETHODIMP GetDriverVersionDetail(BSTR* detail) override { return Give(detail); }
    STDMETHODIMP GetPrinterQueue(IPrinterQueue** queue) override { return GiveObject<Queue>(queue); }
    STDMETHODIMP GetPrinterInformation(IPrinterInformation** information) override {
        return GiveObject<Information>(information);
    }
    STDMETHODIMP GetSettings(IDriverSettings** settings) override { return GiveObject<Settings>(settings); }
};

/// A class object that lasts as long as the process.
template<class Object>
class Factory : public IClassFactory {
  public:
    virtual ~Factory() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IClassFactory;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        *object = nullptr;
        if (outer) {
            return CLASS_E_NOAGGREGATION;
        }
        auto* const made = new (std::nothrow) Object;
        if (!made) {
            return E_OUTOFMEMORY;
        }
        const HRESULT status = made->QueryInterface(id, object);
        made->Release();
        return status;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

} // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    static Factory<Automation> automation;
    static Factory<Actions> actions;
    static Factory<Version> version;
    if (classId == __uuidof(DriverAutomation)) {
        return automation.QueryInterface(interfaceId, object);
    }
    if (classId == __uuidof(DriverActions)) {
        return actions.QueryInterface(interfaceId, object);
    }
    if (classId == __uuidof(VersionInformation)) {
        return version.QueryInterface(interfaceId, object);
    }
    *object = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return S_FALSE;
}
