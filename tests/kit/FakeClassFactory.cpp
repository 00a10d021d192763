// The class factories of the fake server.
#include "tests/kit/FakeClassFactory.h"

#include <objbase.h>

#include <memory>
#include <stdexcept>
#include <utility>

#include "automation/Owners.h"
#include "tests/kit/FakeObjects.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/Operations.h"
#include "tests/kit/ServerState.h"

namespace kit {
namespace {

class FakeClassFactory final : public OneInterface<IClassFactory> {
  public:
    FakeClassFactory(std::shared_ptr<ServerState> state, FakeClass which)
        : m_state(std::move(state)), m_class(which) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        *object = nullptr;
        return outer ? CLASS_E_NOAGGREGATION : MakeFakeObject(m_state, m_class, id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL lock) override {
        m_state->factoryLocks += lock ? 1 : -1;
        return S_OK;
    }

  private:
    std::shared_ptr<ServerState> m_state;
    FakeClass m_class;
};

} // namespace

DWORD RegisterFakeClass(std::shared_ptr<ServerState> state, FakeClass which) {
    const auto factory = kemba::MakeObject<FakeClassFactory>(std::move(state), which);
    DWORD registration = 0;
    const HRESULT status = CoRegisterClassObject(ClassIdOf(which), factory.Get(), CLSCTX_INPROC_SERVER,
                                                 REGCLS_MULTIPLEUSE, &registration);
    if (FAILED(status)) {
        throw std::runtime_error("a class of the fake server cannot be registered");
    }
    return registration;
}

} // namespace kit
