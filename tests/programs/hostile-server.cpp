// A server of the contract, under classes of its own, that dies in the middle of an operation, or takes its
// time:
//
//     hostile-server CLASS OPERATION HOW
//
// CLASS is that of the main object; the others follow from it. Of two events, named "kemba hostile CLASS
// ready" and "kemba hostile CLASS over", it sets the first when the classes are offered, and ends with the
// second. The operation is named as in the test kit, or is "DriverAutomation.CreateInstance" and the like;
// HOW is "die" or a number of milliseconds. Everything else it answers as the test kit's server does, to one
// client. It has no window, so that nobody's broadcast waits for it.
#include <windows.h>
#include <objbase.h>

#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "automation/Owners.h"
#include "tests/kit/FakeObjects.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"
#include "tests/programs/OwnClasses.h"

using namespace kit;

namespace {

constexpr UINT kDeath = 9;              // exit status
constexpr DWORD kLongestLife = 300'000; // milliseconds: a test that was killed does not end its server

/// An operation, and what happens in it.
struct Hostility {
    std::string operation;
    std::function<void()> work;
};

class Factory final : public OneInterface<IClassFactory> {
  public:
    Factory(std::shared_ptr<ServerState> state, FakeClass which, const Hostility& hostility)
        : m_state(std::move(state)), m_class(which), m_hostility(hostility) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        *object = nullptr;
        if (m_hostility.operation == std::string(NameOf(m_class)) + ".CreateInstance") {
            m_hostility.work();
        }
        return outer ? CLASS_E_NOAGGREGATION : MakeFakeObject(m_state, m_class, id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL) override { return S_OK; }

  private:
    std::shared_ptr<ServerState> m_state;
    FakeClass m_class;
    const Hostility& m_hostility;
};

std::function<void()> WorkOf(const std::wstring& how) {
    if (how == L"die") {
        return [] { TerminateProcess(GetCurrentProcess(), kDeath); };
    }
    return [milliseconds = std::wcstoul(how.c_str(), nullptr, 10)] { Sleep(milliseconds); };
}

} // namespace

int wmain(int count, wchar_t* words[]) {
    if (count < 4 || // behind the words may stand one of COM's, which starts it when it is registered
        FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return 1;
    }
    const Hostility hostility{Narrow(words[2]), WorkOf(words[3])};
    const auto state = std::make_shared<ServerState>();
    if (FindOperation(hostility.operation)) {
        Answer answer;
        answer.work = hostility.work;
        state->script.Add(hostility.operation, std::move(answer));
    }

    CLSID first{};
    if (FAILED(CLSIDFromString(words[1], &first))) {
        return 1;
    }
    const OwnClasses own(first);
    const std::pair<FakeClass, CLSID> classes[] = {{FakeClass::DriverAutomation, own.automation},
                                                   {FakeClass::DriverActions, own.actions},
                                                   {FakeClass::VersionInformation, own.version}};
    for (const auto& [which, id] : classes) {
        DWORD registration = 0;
        if (FAILED(CoRegisterClassObject(id, kemba::MakeObject<Factory>(state, which, hostility).Get(),
                                         CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &registration))) {
            return 1;
        }
    }
    const std::wstring events = std::wstring(L"kemba hostile ") + words[1];
    const UniqueHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, (events + L" ready").c_str()));
    const UniqueHandle over(OpenEventW(SYNCHRONIZE, FALSE, (events + L" over").c_str()));
    SetEvent(ready.get());
    WaitForSingleObject(over.get(), kLongestLife);
    return 0;
}
