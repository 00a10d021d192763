// Class objects and their registration with COM.
#include "substitute/server/ClassFactory.h"

#include <objbase.h>

#include <chrono>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/server/ServingTurn.h"

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
    if (outer) {
        return CLASS_E_NOAGGREGATION;
    }
    if (!m_context.uses.TryEnter()) {
        return CO_E_SERVER_STOPPING;
    }
    const HRESULT status = m_class.create(m_context, iid, object);
    m_context.uses.Leave();
    return status;
}

HRESULT ClassFactory::LockServer(BOOL lock) noexcept {
    if (lock) {
        if (!m_context.uses.TryEnter()) {
            return CO_E_SERVER_STOPPING;
        }
        ++m_locks;
        return S_OK;
    }
    // A lock too many that one client takes off must not be that of another, or an object's use.
    ULONG locks = m_locks;
    do {
        if (locks == 0) {
            return E_UNEXPECTED;
        }
    } while (!m_locks.compare_exchange_weak(locks, locks - 1));
    m_context.uses.Leave();
    return S_OK;
}

ClassObjects::ClassObjects(const ServerContext& context, ServingTurn& turn) : m_turn(turn) {
    for (const ServerClass& served : ServerClasses()) {
        m_classes.push_back({served.id, MakeObject<ClassFactory>(context, served)});
        // Whoever found a class just before it was hidden still reaches it: without this the system would cut
        // it off at once.
        ThrowIfFailed(CoLockObjectExternal(m_classes.back().factory.Get(), TRUE, FALSE),
                      L"keeping a class within reach");
    }
}

ClassObjects::~ClassObjects() {
    Hide();
}

void ClassObjects::Show() {
    if (!m_turn.Take(std::chrono::milliseconds(0))) {
        throw Failure{CO_E_SERVER_STOPPING, L"another process offers the classes"};
    }
    try {
        for (Offered& offered : m_classes) {
            ThrowIfFailed(CoRegisterClassObject(offered.id, offered.factory.Get(), CLSCTX_LOCAL_SERVER,
                                                REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &offered.cookie),
                          L"offering a class");
        }
        ThrowIfFailed(CoResumeClassObjects(), L"offering the classes");
    } catch (...) {
        Hide();
        m_turn.GiveUp();
        throw;
    }
}

void ClassObjects::Hide() noexcept {
    CoSuspendClassObjects(); // all at one moment
    for (Offered& offered : m_classes) {
        if (offered.cookie != 0) {
            CoRevokeClassObject(offered.cookie);
            offered.cookie = 0;
        }
    }
}

} // namespace kemba::substitute
