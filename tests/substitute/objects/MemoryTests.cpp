// What a client's visit leaves in the server: nothing, not one block of memory.
#include <windows.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "demo/Printers.h"
#include "substitute/actions/ActionProfile.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/objects/UseCount.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"
#include "substitute/spooler/WindowsSpooler.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/LateCalls.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

constexpr int kFirstVisits = 3; // after which all is there that is kept for ever
constexpr int kVisits = 10;
constexpr LONG kFeed = 4;

/// The blocks that are allocated in all heaps of the process: objects, texts, BSTRs and what the system's
/// libraries keep.
std::size_t CountBlocks() {
    std::array<HANDLE, 64> heaps;
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    EXPECT_LE(count, heaps.size());
    std::size_t blocks = 0;
    for (DWORD index = 0; index < count && index < heaps.size(); ++index) {
        EXPECT_TRUE(HeapLock(heaps[index]));
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[index], &entry)) {
            blocks += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? 1 : 0;
        }
        const DWORD end = GetLastError();
        HeapUnlock(heaps[index]);
        EXPECT_EQ(end, DWORD{ERROR_NO_MORE_ITEMS});
    }
    return blocks;
}

/// A printer's visitors, in this process.
class Visitor {
  public:
    Visitor(Spooler& spooler, std::wstring printer) : m_spooler(spooler), m_printer(std::move(printer)) {
        m_profiles.Put(m_printer + L".profile", "Feed = FF\n");
    }

    void Visit() {
        // Bound to the printer by the first operation, to none, and with files that are not there.
        CallEveryClass(m_printer, m_folder.File(L"dock.vqs"));
        CallEveryClass(L"No such printer", L"");
        CallEveryClass(m_printer, L"C:\\no such folder\\dock.vqs");
        SendLabel();
        RequestActions();
        SetErrorInfo(0, nullptr);
    }

  private:
    using Object = ComPtr<IDispatch>;

    static Object Make(const ServerClass& served, const ServerContext& context) {
        void* object = nullptr;
        EXPECT_EQ(served.create(context, __uuidof(IDispatch), &object), S_OK) << served.name;
        return Object(static_cast<IDispatch*>(object));
    }

    void CallEveryClass(const std::wstring& printer, const std::wstring& file) {
        for (const ServerClass& served : ServerClasses()) {
            CallEveryOperation(*Make(served, m_context), printer, file);
        }
    }

    /// Calls all operations by name, in their order, and then those of the objects that they hand out.
    static void CallEveryOperation(IDispatch& object, const std::wstring& text, const std::wstring& file) {
        constexpr MEMBERID kSystems = 0x10000; // operations that every object has
        ComPtr<ITypeInfo> types;
        ASSERT_EQ(object.GetTypeInfo(0, LOCALE_NEUTRAL, types.Put()), S_OK);
        FUNCDESC* function = nullptr;
        for (UINT index = 0; SUCCEEDED(types->GetFuncDesc(index, &function)); ++index) {
            if (function->memid < kSystems) {
                CallOperation(object, *function, text, file);
            }
            types->ReleaseFuncDesc(function);
        }
    }

    static void CallOperation(IDispatch& object, const FUNCDESC& function, const std::wstring& text,
                              const std::wstring& file) {
        const InText given(text);
        std::vector<VARIANT> arguments; // the last one comes first
        for (int index = function.cParams; index-- > 0;) {
            const ELEMDESC& parameter = function.lprgelemdescParam[index];
            if (parameter.paramdesc.wParamFlags & PARAMFLAG_FOUT) {
                continue; // is the result
            }
            VARIANT argument = {};
            argument.vt = parameter.tdesc.vt;
            if (argument.vt == VT_BSTR) {
                argument.bstrVal = given;
            } else if (argument.vt == VT_VARIANT) {
                argument.vt = VT_ERROR;
                argument.scode = DISP_E_PARAMNOTFOUND;
            } else {
                argument.lVal = 1;
            }
            arguments.push_back(argument);
        }
        DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        Value result;
        Told told;
        object.Invoke(function.memid, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD, &parameters, &result,
                      &told.exception, nullptr);
        if (result.vt == VT_DISPATCH) {
            CallEveryOperation(*result.pdispVal, file, file);
        }
    }

    ComPtr<DriverAutomationObject> MakeBound() const {
        auto automation = MakeObject<DriverAutomationObject>(m_context);
        EXPECT_EQ(automation->PutPrinterName(InText(m_printer)), S_OK);
        return automation;
    }

    void SendLabel() const {
        const auto automation = MakeBound();
        EXPECT_EQ(automation->SendFile(InText(m_label.Path()), InText(L"")), S_OK);
        automation->SendFile(InText(m_folder.File(L"missing.prn")), InText(L""));
        std::wstring text;
        EXPECT_EQ(ReadText(*automation, &IDriverAutomation::GetComment, text), S_OK);
        EXPECT_EQ(text, m_printer); // the latest text that it was given
    }

    /// Asks for every action, and carries out the one that the profile knows.
    void RequestActions() const {
        const auto automation = MakeBound();
        const auto request = MakeObject<DriverActionsObject>(m_context);
        VARIANT argument = {};
        argument.vt = VT_DISPATCH;
        argument.pdispVal = request.Get();
        for (LONG action = 0; action < 40; ++action) {
            EXPECT_EQ(request->PutExecute(action == kFeed), S_OK);
            automation->PerformAction(action, argument);
            VARIANT_BOOL supported = VARIANT_FALSE;
            EXPECT_EQ(request->GetSupported(&supported), S_OK);
            EXPECT_TRUE(supported || action != kFeed);
        }
    }

    Spooler& m_spooler;
    const std::wstring m_printer;
    const TemporaryFolder m_folder;
    const TemporaryFile m_label{"label"};
    const TemporaryFolder m_profiles;
    PrinterLocks m_locks;
    const ActionProfiles m_actionProfiles{[this] { return m_profiles.Path(); }};
    UseCount m_uses;
    const ContractTypes m_types;
    const ServerContext m_context{m_spooler, m_locks, m_actionProfiles, m_uses, m_types};
};

class ServerMemory : public testing::Test {
  protected:
    const Apartment apartment{COINIT_MULTITHREADED};

    /// Lets visits happen, each of which may leave nothing but what the system keeps: one block, or BSTR, or
    /// object that every visit loses is seen.
    template<class Visit>
    static void ExpectNothingLeft(std::size_t keptBySystem, Visit&& visit) {
        for (int number = 0; number < kFirstVisits; ++number) {
            visit();
        }
        const std::size_t before = CountBlocks();
        for (int number = 0; number < kVisits; ++number) {
            visit();
        }
        const std::size_t after = CountBlocks();
        std::printf("blocks of memory: %zu before, %zu after %d visits, %zu of each kept by the system\n",
                    before, after, kVisits, keptBySystem);
        // A few come and go with the system's caches.
        EXPECT_LT(after, before + kVisits * keptBySystem + kVisits / 2);
    }
};

/// Blocks that Wine's printer driver keeps for each printer that there ever was.
std::size_t BlocksOfAFormerPrinter() {
    constexpr std::size_t kPrinters = 5;
    {
        const demo::Printer first;
    }
    const std::size_t before = CountBlocks();
    for (std::size_t made = 0; made < kPrinters; ++made) {
        const demo::Printer printer;
    }
    return (CountBlocks() - before) / kPrinters;
}

TEST_F(ServerMemory, VisitsToTheRealSpoolerLeaveNothing) {
    const TemporaryFolder ports;
    const demo::Printer printer({.port = ports.File(L"port.prn")});
    WindowsSpooler spooler;
    Visitor visitor(spooler, printer.Name());
    constexpr std::size_t kResets = 2; // of a visit, each with a printer that is made and deleted
    ExpectNothingLeft(kResets * BlocksOfAFormerPrinter(), [&] { visitor.Visit(); });
}

TEST_F(ServerMemory, VisitsToTheSpoolerInMemoryLeaveNothing) {
    FakeSpooler spooler;
    spooler.printers[L"Label A"].driver = L"Zippy 300";
    spooler.printers[L"Label A"].settings.globalMode = MakeMode(2);
    Visitor visitor(spooler, L"Label A");
    ExpectNothingLeft(0, [&] {
        visitor.Visit();
        EXPECT_EQ(spooler.open, 0); // no handle either
        for (auto* const notes : {&spooler.journal, &spooler.loaded}) {
            *notes = {};
        }
        spooler.accesses = {};
        spooler.commands = {};
        spooler.printed = {};
    });
}

} // namespace
