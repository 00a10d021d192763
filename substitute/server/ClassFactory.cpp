// Class objects and their registration with COM.
#include "substitute/server/ClassFactory.h"

#include <objbase.h>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"

namespace kemba::substitute {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) noexcept {
    if (!object) {
        return E_POINTER;
    }
    if (iid != __uuidof(IUnknown) && iid != __uuidof(IClassFactory)) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

ULONG ClassFactory::AddRef() noexcept {
    return ++m_references;
}

ULONG ClassFactory::Release() noexcept {
    const ULONG left = --m_references;
    if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
    if (!object) {
        return E_POINTER;
    }
    *object = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : m_class.create(m_context, iid, object);
}

HRESULT ClassFactory::LockServer(BOOL lock) noexcept {
    if (lock) {
        m_context.process.Enter();
    } else {
        m_context.process.Leave();
    }
    return S_OK;
}

ClassObjects::ClassObjects(const ServerContext& context) {
    m_cookies.reserve(ServerClasses().size());
    try {
        for (const ServerClass& served : ServerClasses()) {
            const ComPtr<ClassFactory> factory = MakeObject<ClassFactory>(context, served);
            DWORD cookie = 0;
            ThrowIfFailed(CoRegisterClassObject(served.id, factory.Get(), CLSCTX_LOCAL_SERVER,
                                                REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &cookie),
                          L"offering a class failed");
            m_cookies.push_back(cookie);
        }
        ThrowIfFailed(CoResumeClassObjects(), L"offering the classes failed");
    } catch (...) {
        Revoke();
        throw;
    }
}

ClassObjects::~ClassObjects() {
    Revoke();
}

void ClassObjects::Revoke() noexcept {
    for (const DWORD cookie : m_cookies) {
        CoRevokeClassObject(cookie);
    }
}

} // namespace kemba::substitute
