// Class objects: how COM makes the server's objects.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <atomic>
#include <vector>

#include "automation/Owners.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/server/ServerProcess.h"
#include "substitute/server/ServingTurn.h"

namespace kemba::substitute {

/// Makes objects of one class. It does not itself keep the process alive; its locks and its calls do. Once
/// the process's end is decided it answers CO_E_SERVER_STOPPING.
class ClassFactory final : public IClassFactory {
  public:
    ClassFactory(const ServerContext& context, const ServerClass& served)
        : m_context(context), m_class(served) {}
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override;
    /// To unlock what is not locked is refused with E_UNEXPECTED.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

  private:
    virtual ~ClassFactory() = default;

    const ServerContext m_context;
    const ServerClass m_class;
    std::atomic<ULONG> m_references{1};
    std::atomic<ULONG> m_locks{0};
};

/// All classes, offered to other processes while they are shown; hidden at the end.
class ClassObjects final : public ClassOffer {
  public:
    /// The turn outlives this. Throws Failure.
    ClassObjects(const ServerContext& context, ServingTurn& turn);
    ClassObjects(const ClassObjects&) = delete;
    ClassObjects& operator=(const ClassObjects&) = delete;
    ~ClassObjects() override;

    /// Offers them all at one moment, so that no client finds some classes only. Refused while another
    /// process has the turn; one that fails gives the turn up, so that another process may offer them.
    void Show() override;
    void Hide() noexcept override;

  private:
    struct Offered {
        CLSID id;
        ComPtr<ClassFactory> factory;
        DWORD cookie = 0; // 0: not registered
    };
    ServingTurn& m_turn;
    std::vector<Offered> m_classes;
};

} // namespace kemba::substitute
