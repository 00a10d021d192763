// A small client of the fake server, for the tests of the server itself.
#pragma once

#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>
#include <oleauto.h>

#include <string>

/// Activates as a client of the contract does; the pointer is null when any step fails.
template<class Interface>
Interface* Activate(REFCLSID classId, HRESULT* status = nullptr) {
    constexpr DWORD kAnyContext = 0x17;
    IUnknown* unknown = nullptr;
    void* wanted = nullptr;
    HRESULT result = CoCreateInstance(classId, nullptr, kAnyContext, __uuidof(IUnknown),
                                      reinterpret_cast<void**>(&unknown));
    if (SUCCEEDED(result)) {
        result = OleRun(unknown);
    }
    if (SUCCEEDED(result)) {
        result = unknown->QueryInterface(__uuidof(Interface), &wanted);
    }
    if (unknown) {
        unknown->Release();
    }
    if (status) {
        *status = result;
    }
    return static_cast<Interface*>(wanted);
}

inline IDriverAutomation* ActivateAutomation(HRESULT* status = nullptr) {
    return Activate<IDriverAutomation>(__uuidof(DriverAutomation), status);
}

/// A BSTR for one call.
class CallText {
  public:
    explicit CallText(const wchar_t* text) : m_text(SysAllocString(text)) {}
    CallText(const CallText&) = delete;
    CallText& operator=(const CallText&) = delete;
    ~CallText() { SysFreeString(m_text); }
    operator BSTR() const { return m_text; }

  private:
    BSTR m_text;
};

/// Takes the text out of a BSTR and frees it.
inline std::wstring Take(BSTR text) {
    const std::wstring taken(text ? text : L"(null)");
    SysFreeString(text);
    return taken;
}

/// A fresh object bound to the printer.
inline IDriverAutomation* Bound(const wchar_t* printer) {
    IDriverAutomation* const automation = ActivateAutomation();
    automation->PutPrinterName(CallText(printer));
    return automation;
}
