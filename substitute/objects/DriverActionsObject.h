// An action request.
#pragma once

#include <DriverAutomation.h>

#include <atomic>

#include "core/Compiler.h"
#include "substitute/actions/ActionRequest.h"
#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"

namespace kemba::substitute {

/// Carries the flag into an action and the answers out of it; a fresh one only asks, and knows no answer. The
/// answers are those of the latest action.
class DriverActionsObject final : public AutomationObject<IDriverActions>, public IActionRequest {
  public:
    /// Throws Failure.
    explicit DriverActionsObject(const ServerContext& context) : AutomationObject(context) {}

    KEMBA_ANY_ALIGNMENT HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid,
                                                                 void** object) noexcept override {
        if (object && iid == kActionRequest) {
            *object = static_cast<IActionRequest*>(this);
            AddRef();
            return S_OK;
        }
        return AutomationObject::QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return AutomationObject::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return AutomationObject::Release(); }

    HRESULT STDMETHODCALLTYPE Reserved1() noexcept override { return Unavailable(L"Reserved1"); }
    HRESULT STDMETHODCALLTYPE Reserved2() noexcept override { return Unavailable(L"Reserved2"); }
    HRESULT STDMETHODCALLTYPE Reserved3() noexcept override { return Unavailable(L"Reserved3"); }
    /// Any value but 0 is true.
    HRESULT STDMETHODCALLTYPE PutExecute(VARIANT_BOOL execute) noexcept override {
        return Answer(L"PutExecute", [&] { m_execute = execute != VARIANT_FALSE; });
    }
    HRESULT STDMETHODCALLTYPE GetSupported(VARIANT_BOOL* supported) noexcept override {
        return Answer(L"GetSupported", supported,
                      [&] { *supported = m_outcome.load().supported ? VARIANT_TRUE : VARIANT_FALSE; });
    }
    HRESULT STDMETHODCALLTYPE Reserved6() noexcept override { return Unavailable(L"Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() noexcept override { return Unavailable(L"Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return Unavailable(L"Reserved8"); }
    HRESULT STDMETHODCALLTYPE GetDisplaysInterface(VARIANT_BOOL* displays) noexcept override {
        return Answer(L"GetDisplaysInterface", displays,
                      [&] { *displays = m_outcome.load().displays ? VARIANT_TRUE : VARIANT_FALSE; });
    }

    bool IsToBeExecuted() const noexcept override { return m_execute; }
    void SetOutcome(const ActionOutcome& outcome) noexcept override { m_outcome = outcome; }

  private:
    ~DriverActionsObject() override = default;

    std::atomic<bool> m_execute{false};
    std::atomic<ActionOutcome> m_outcome{ActionOutcome()};
    static_assert(decltype(m_outcome)::is_always_lock_free);
};

} // namespace kemba::substitute
