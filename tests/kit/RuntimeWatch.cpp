// A spy on the initialisation of the component runtime.
#include "tests/kit/RuntimeWatch.h"

#include <objbase.h>
#include <objidl.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "automation/Owners.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/ServerState.h"

namespace kit {

class RuntimeWatch::Spy final : public OneInterface<IInitializeSpy> {
  public:
    explicit Spy(std::shared_ptr<ServerState> state) : m_state(std::move(state)) {}

    int Balance() const { return m_balance; }

    HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT status, DWORD apartment, DWORD) override {
        m_state->journal.AddEvent("CoInitialize(" + std::to_string(apartment) + ")");
        if (SUCCEEDED(status)) {
            ++m_balance;
        }
        return status;
    }
    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override {
        m_state->journal.AddEvent("CoUninitialize()");
        --m_balance;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }

  private:
    std::shared_ptr<ServerState> m_state;
    int m_balance = 0;
};

RuntimeWatch::RuntimeWatch(std::shared_ptr<ServerState> state)
    : m_spy(kemba::MakeObject<Spy>(std::move(state))) {
    if (FAILED(CoRegisterInitializeSpy(m_spy.Get(), &m_cookie))) {
        throw std::runtime_error("the component runtime cannot be watched");
    }
}

RuntimeWatch::~RuntimeWatch() {
    CoRevokeInitializeSpy(m_cookie);
}

int RuntimeWatch::Balance() const {
    return m_spy->Balance();
}

} // namespace kit
