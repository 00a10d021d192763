// What a run over thousands of printers takes of memory. It needs a process of its own, as ctest gives it: a
// process's peak never falls.
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>
#include <psapi.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "tests/kit/FakeObjects.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"
#include "tests/kit/WholeRun.h"
#include "tests/whole_run/ListedPrinters.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

constexpr int kPrinters = 5'000;
constexpr std::size_t kMost = std::size_t{10} * 1024 * 1024; // bytes, more than for one printer

/// Makes the test kit's objects, of which nothing is kept: no journal, and no object after its last
/// reference.
class ForgetfulClass final : public OneInterface<IClassFactory> {
  public:
    ForgetfulClass() {
        m_state->isOpen = false;
        Answer answer;
        answer.work = [state = m_state.get()] { state->journal.Clear(); };
        m_state->script.Add("IPrinterInformation.GetStatus", std::move(answer));
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        m_state->problems.clear(); // the texts are nobody's concern here
        return MakeFakeObject(m_state, FakeClass::DriverAutomation, id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL) override { return S_OK; }

  private:
    const std::shared_ptr<ServerState> m_state = std::make_shared<ServerState>();
};

/// The most memory that this process ever had, in bytes: what it committed, and what was in the machine's.
struct Peak {
    Peak() {
        PROCESS_MEMORY_COUNTERS counters{};
        EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)));
        committed = counters.PeakPagefileUsage;
        resident = counters.PeakWorkingSetSize;
    }
    std::size_t committed;
    std::size_t resident;
};

/// Reads the status of all printers; every line is looked at.
void ReadStatus(const std::vector<std::wstring>& names) {
    const ListedPrinters printers(names);
    const RunResult run = RunAfresh({L"/a", L"get", L"status"});
    std::string expected = "Executing 'Get' command.\r\n";
    for (const std::wstring& name : names) {
        expected += Printed(name) + ": Status\r\n";
    }
    expected += "Finished processing command.\r\n";
    EXPECT_TRUE(run.output == expected) << run.output.substr(0, 300);
    EXPECT_EQ(run.status, 0);
}

TEST(ManyPrintersMemory, IsThatOfOnePrinterAndTenMegabytesAtMost) {
    const Apartment apartment;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(__uuidof(DriverAutomation), kemba::MakeObject<ForgetfulClass>().Get(),
                                    CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
              S_OK);
    const std::vector<std::wstring> names = Numbered(kPrinters);
    ReadStatus(Numbered(1));
    const Peak one;
    ReadStatus(names);
    const Peak many;
    CoRevokeClassObject(cookie);
    std::printf("peak with 1 printer: %zu KB committed, %zu KB resident; with %d: %zu KB and %zu KB more\n",
                one.committed / 1024, one.resident / 1024, kPrinters, (many.committed - one.committed) / 1024,
                (many.resident - one.resident) / 1024);
    EXPECT_LT(many.committed - one.committed, kMost);
    EXPECT_LT(many.resident - one.resident, kMost);
}

} // namespace
