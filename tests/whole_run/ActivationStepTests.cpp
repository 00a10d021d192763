// Whole runs against classes whose activation fails at one of its steps, or succeeds without anything to show
// for it.
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>
#include <oleidl.h>

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "automation/Owners.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

constexpr HRESULT kOther = E_ACCESSDENIED;

/// What the steps of an activation answer; a success gives null, except where there is no answer: that step
/// does as it must.
struct Steps {
    std::optional<HRESULT> classObject{}; ///< the class's object asked for its interface
    std::optional<HRESULT> creation{};
    std::optional<HRESULT> runnable{}; ///< the object asked whether it can be put into its running state
    std::optional<HRESULT> interfaceAsked{};
};

int liveObjects = 0;

/// Counts the live ones; the interfaces that it has fail when they are used.
class Counted : public OneInterface<IUnknown> {
  public:
    Counted() { ++liveObjects; }

  protected:
    ~Counted() override { --liveObjects; }
};

class Object final : public Counted {
  public:
    explicit Object(const Steps& steps) : m_steps(steps) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (IsEqualIID(id, __uuidof(IRunnableObject))) {
            *object = nullptr;
            return m_steps.runnable.value_or(E_NOINTERFACE);
        }
        if (IsEqualIID(id, __uuidof(IDriverAutomation)) || IsEqualIID(id, __uuidof(IVersionInformation))) {
            *object = nullptr;
            return m_steps.interfaceAsked.value_or(E_NOINTERFACE);
        }
        return Counted::QueryInterface(id, object);
    }

  private:
    const Steps m_steps;
};

class ClassObject final : public OneInterface<IClassFactory> {
  public:
    explicit ClassObject(const Steps& steps) : m_steps(steps) { ++liveObjects; }
    ~ClassObject() override { --liveObjects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (IsEqualIID(id, __uuidof(IClassFactory)) && m_steps.classObject) {
            *object = nullptr;
            return *m_steps.classObject;
        }
        return OneInterface::QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        *object = nullptr;
        if (m_steps.creation) {
            return *m_steps.creation;
        }
        return kemba::MakeObject<Object>(m_steps)->QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL) override { return S_OK; }

  private:
    const Steps m_steps;
};

/// Offers a class as long as it lives.
class Offered {
  public:
    Offered(REFCLSID id, const Steps& steps) {
        EXPECT_EQ(CoRegisterClassObject(id, kemba::MakeObject<ClassObject>(steps).Get(), CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &m_cookie),
                  S_OK);
    }
    Offered(const Offered&) = delete;
    Offered& operator=(const Offered&) = delete;
    ~Offered() { CoRevokeClassObject(m_cookie); }

  private:
    DWORD m_cookie = 0;
};

struct Row {
    const char* title;
    Steps steps;
    HRESULT raised;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.title;
}

const Row kRows[] = {
    {"ClassObjectRefuses", {.classObject = kOther}, kOther},
    {"ClassObjectLacksItsInterface", {.classObject = E_NOINTERFACE}, E_POINTER},
    {"CreationFails", {.creation = kOther}, kOther},
    {"CreationLacksAnInterface", {.creation = E_NOINTERFACE}, E_POINTER},
    {"CreationGivesNull", {.creation = S_OK}, E_POINTER},
    {"CreationGivesNullWithAnotherSuccess", {.creation = S_FALSE}, E_POINTER},
    {"InterfaceRefused", {.interfaceAsked = kOther}, kOther},
    {"InterfaceMissing", {.interfaceAsked = E_NOINTERFACE}, E_POINTER},
    {"InterfaceNull", {.interfaceAsked = S_OK}, E_POINTER},
    {"InterfaceNullWithAnotherSuccess", {.interfaceAsked = S_FALSE}, E_POINTER},
    // Whoever does not say that it can be run is not run.
    {"RunningRefused", {.runnable = kOther, .interfaceAsked = S_OK}, E_POINTER},
};

class ActivationSteps : public WholeRunTest, public testing::WithParamInterface<Row> {
  protected:
    ActivationSteps() {
        server.Unregister(FakeClass::DriverAutomation);
        server.Unregister(FakeClass::VersionInformation);
    }
};

TEST_P(ActivationSteps, FailAsAStatusDoes) {
    {
        const Offered automation(__uuidof(DriverAutomation), GetParam().steps);
        const Offered version(__uuidof(VersionInformation), GetParam().steps);
        const RunResult get = RunOnBoth({L"get", L"comment"});
        EXPECT_EQ(get.output, Framed("Get", {kUnsupported, kUnsupported}));
        EXPECT_EQ(get.status, 0);
        const RunResult shown = Run({L"version", L"interface"});
        EXPECT_EQ(shown.output, Output(ErrorLines(GetParam().raised)));
        EXPECT_EQ(shown.status, 0);
        const RunResult stopped = RunOnFirst({L"version", L"driver"});
        EXPECT_EQ(stopped.output, "");
        EXPECT_EQ(stopped.status, 2);
    }
    EXPECT_EQ(server.Calls(), Lines{});
    EXPECT_EQ(liveObjects, 0);
}

INSTANTIATE_TEST_SUITE_P(Each, ActivationSteps, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.title); });

} // namespace
