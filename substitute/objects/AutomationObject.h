// What every object of the server has: identity, lifetime, late binding, error information.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <oleauto.h>

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "automation/Owners.h"
#include "core/Compiler.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/LateBinding.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/objects/UseCount.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Hands a text out as a BSTR of the caller's. Throws Failure.
inline void HandOut(const std::wstring& text, BSTR* out) {
    OwnedBstr copy = OwnedBstr::Copy(text);
    if (!copy) {
        throw std::bad_alloc();
    }
    *out = copy.Detach();
}

/// A text argument, which a refusal calls by that name; null counts as empty. Throws Failure (E_INVALIDARG)
/// for a text with a zero inside: up to there it would be taken for another one.
inline std::wstring TextFrom(BSTR text, const wchar_t* name) {
    std::wstring copy = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
    if (copy.find(L'\0') != copy.npos) {
        throw Failure{E_INVALIDARG, std::wstring(name) + L" has a zero character in it"};
    }
    return copy;
}

/// Base of an object that serves one dual interface of the contract. Any thread of the multithreaded
/// apartment may call it. An operation is a call of Answer(), so that no exception leaves the object.
template<class Interface>
class AutomationObject : public Interface, public ISupportErrorInfo {
  public:
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;

    // The marshaller's identifiers lie in packed tables, at any address.
    KEMBA_ANY_ALIGNMENT HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid,
                                                                 void** object) noexcept override {
        if (!object) {
            return E_POINTER;
        }
        if (iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) || iid == __uuidof(Interface)) {
            *object = static_cast<Interface*>(this);
        } else if (iid == __uuidof(ISupportErrorInfo)) {
            *object = static_cast<ISupportErrorInfo*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (!count) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** information) noexcept override {
        if (!information) {
            return E_POINTER;
        }
        *information = nullptr;
        if (index != 0) {
            return DISP_E_BADINDEX;
        }
        m_types->AddRef();
        *information = m_types.Get();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                            DISPID* identifiers) noexcept override {
        return reserved == IID_NULL ? DispGetIDsOfNames(m_types.Get(), names, count, identifiers)
                                    : DISP_E_UNKNOWNINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* wrongArgument) noexcept override {
        return reserved == IID_NULL ? InvokeByName(*this, *m_types, member, flags, parameters, result,
                                                   exception, wrongArgument)
                                    : DISP_E_UNKNOWNINTERFACE;
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return iid == __uuidof(Interface) ? S_OK : S_FALSE;
    }

  protected:
    /// The object starts with one reference, its maker's. Throws Failure.
    explicit AutomationObject(const ServerContext& context)
        : m_use(context.uses), m_types(context.types.Find(__uuidof(Interface))) {}
    virtual ~AutomationObject() = default;

    /// The printer that error information names; null as long as there is none.
    virtual std::shared_ptr<const Printer> BoundPrinter() const noexcept { return nullptr; }

    /// Does the work of one operation; its exception becomes the status and error information.
    template<class Work>
    HRESULT Answer(const wchar_t* operation, Work&& work) const noexcept {
        SetErrorInfo(0, nullptr); // an earlier call's information does not belong to this one
        try {
            std::forward<Work>(work)();
            return S_OK;
        } catch (...) {
            const std::shared_ptr<const Printer> printer = BoundPrinter();
            return ReportCurrentException(__uuidof(Interface), operation,
                                          printer ? std::wstring_view(printer->Name()) : std::wstring_view());
        }
    }
    /// The same for an operation with an out argument, which is cleared first.
    template<class Out, class Work>
    HRESULT Answer(const wchar_t* operation, Out* out, Work&& work) const noexcept {
        return Answer(operation, [&] {
            if (!out) {
                throw Failure{E_POINTER, L"the result has no place to go to (null pointer)"};
            }
            *out = Out();
            std::forward<Work>(work)();
        });
    }

    /// The answers of an operation that this server does not offer.
    HRESULT Unavailable(const wchar_t* operation) const noexcept {
        return Answer(operation, [] { ThrowUnavailable(); });
    }
    template<class Out>
    HRESULT Unavailable(const wchar_t* operation, Out* out) const noexcept {
        return Answer(operation, out, [] { ThrowUnavailable(); });
    }

  private:
    [[noreturn]] static void ThrowUnavailable() {
        throw Failure{E_NOTIMPL, L"this server does not offer the operation"};
    }

    const Use m_use;
    const ComPtr<ITypeInfo> m_types;
    std::atomic<ULONG> m_references{1};
};

} // namespace kemba::substitute
