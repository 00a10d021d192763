// An action request.
#pragma once

#include <DriverAutomation.h>

#include "substitute/AutomationObject.h"

namespace kemba::substitute {

/// The spooler knows no driver actions, so there is nothing to ask for yet: every operation answers
/// E_NOTIMPL.
class DriverActionsObject final : public AutomationObject<IDriverActions> {
  public:
    /// Throws Failure.
    explicit DriverActionsObject(const ServerContext& context) : AutomationObject(context) {}

    HRESULT STDMETHODCALLTYPE Reserved1() noexcept override { return Unavailable(L"Reserved1"); }
    HRESULT STDMETHODCALLTYPE Reserved2() noexcept override { return Unavailable(L"Reserved2"); }
    HRESULT STDMETHODCALLTYPE Reserved3() noexcept override { return Unavailable(L"Reserved3"); }
    HRESULT STDMETHODCALLTYPE PutExecute(VARIANT_BOOL) noexcept override {
        return Unavailable(L"PutExecute");
    }
    HRESULT STDMETHODCALLTYPE GetSupported(VARIANT_BOOL* supported) noexcept override {
        return Unavailable(L"GetSupported", supported);
    }
    HRESULT STDMETHODCALLTYPE Reserved6() noexcept override { return Unavailable(L"Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() noexcept override { return Unavailable(L"Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return Unavailable(L"Reserved8"); }
    HRESULT STDMETHODCALLTYPE GetDisplaysInterface(VARIANT_BOOL* displays) noexcept override {
        return Unavailable(L"GetDisplaysInterface", displays);
    }

  private:
    ~DriverActionsObject() override = default;
};

} // namespace kemba::substitute
