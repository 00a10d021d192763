// Class objects: how COM makes the server's objects.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <vector>

#include "substitute/server/ServerClasses.h"

namespace kemba::substitute {

/// Makes objects of one class. It does not itself keep the process alive; its locks do.
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
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

  private:
    virtual ~ClassFactory() = default;

    const ServerContext m_context;
    const ServerClass m_class;
    std::atomic<ULONG> m_references{1};
};

/// All classes offered to other processes, as long as this lives.
class ClassObjects {
  public:
    /// Offers them all at one moment, so that no client finds some classes only. Throws Failure.
    explicit ClassObjects(const ServerContext& context);
    ClassObjects(const ClassObjects&) = delete;
    ClassObjects& operator=(const ClassObjects&) = delete;
    ~ClassObjects();

  private:
    void Revoke() noexcept;

    std::vector<DWORD> m_cookies;
};

} // namespace kemba::substitute
