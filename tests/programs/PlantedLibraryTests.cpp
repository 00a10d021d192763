// Files named like the system's libraries lie beside the programs, and the system prefers them to its own.
//
// Windows does so with every library that is no "known DLL"; Wine does it with those that WINEDLLOVERRIDES
// names.
#include <windows.h>
#include <DriverAutomation.h>

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "automation/Owners.h"
#include "demo/Printers.h"
#include "demo/Wine.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/programs/OwnClasses.h"

using namespace kemba;
using namespace kit;

namespace {

/// What the programs import besides known DLLs, and what Wine's own libraries load behind those calls.
const std::vector<std::wstring> kLibraries = {L"WINSPOOL.DRV", L"VERSION.dll",  L"actxprxy.dll",
                                              L"compstui.dll", L"localspl.dll", L"spoolss.dll",
                                              L"uxtheme.dll"};

/// Wine's own user32.dll imports it, before any program's first line: it may be loaded, but not be used.
constexpr wchar_t kLoadedByWine[] = L"VERSION.dll";

class PlantedLibrary : public testing::Test {
  protected:
    PlantedLibrary() {
        for (const std::wstring& library : kLibraries) {
            std::filesystem::copy_file(ProgramPath(L"planted_library.dll"), folder.File(library));
        }
    }

    /// Copies a built program beside the planted libraries, under a name of its own, by which Wine knows what
    /// to prefer; gives its path.
    std::wstring Bring(const std::wstring& program) {
        const std::wstring name = L"planted-" + std::to_wstring(GetCurrentProcessId()) + L"-" + program;
        std::filesystem::copy_file(ProgramPath(program), folder.File(name));
        if (!demo::IsWine()) {
            return folder.File(name);
        }
        const ScratchKey& key =
            m_keys.emplace_back(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\" + name);
        for (const std::wstring& library : kLibraries) {
            const std::wstring stem =
                library.substr(0, library.size() - (library.ends_with(L".dll") ? 4 : 0));
            key.Set(stem, RegistryData::OfText(L"native,builtin"), L"DllOverrides");
        }
        return folder.File(name);
    }
    bool WasLoaded(const std::wstring& library) const {
        return std::filesystem::exists(folder.File(library + L".loaded"));
    }
    void ExpectNoneWasLoaded() const {
        for (const std::wstring& library : kLibraries) {
            EXPECT_TRUE((demo::IsWine() && library == kLoadedByWine) || !WasLoaded(library))
                << Printed(library);
        }
    }

    const TemporaryFolder folder;

  private:
    std::deque<ScratchKey> m_keys;
};

/// A copy of the server under classes of its own.
class OwnServer {
  public:
    explicit OwnServer(const std::wstring& program) {
        m_classes.PutInto(program);
        m_process = StartProgram(L"\"" + program + L"\" -Embedding");
    }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;
    ~OwnServer() {
        TerminateProcess(m_process.get(), 0);
        WaitForSingleObject(m_process.get(), INFINITE);
    }

    /// Asks until the server, which has just been started, offers its class; null when it ends before.
    ComPtr<IDriverAutomation> Activate() const {
        ComPtr<IDriverAutomation> object;
        while (
            FAILED(CoCreateInstance(m_classes.automation, nullptr, CLSCTX_LOCAL_SERVER,
                                    __uuidof(IDriverAutomation), reinterpret_cast<void**>(object.Put()))) &&
            WaitForSingleObject(m_process.get(), 20) == WAIT_TIMEOUT) {
        }
        return object;
    }

  private:
    const OwnClasses m_classes;
    UniqueHandle m_process;
};

std::wstring Ask(IDriverAutomation& automation, HRESULT (IDriverAutomation::*question)(BSTR*)) {
    OwnedBstr answer;
    EXPECT_EQ((automation.*question)(answer.Put()), S_OK);
    return answer.Text();
}

TEST_F(PlantedLibrary, IsLoadedByAProgramThatTakesNoCare) {
    const std::wstring victim = Bring(L"planted-victim.exe");
    RunProgram(victim, {});
    EXPECT_TRUE(WasLoaded(L"WINSPOOL.DRV"));
    EXPECT_TRUE(WasLoaded(L"VERSION.dll"));
    RunProgram(victim, kLibraries);
    for (const std::wstring& library : kLibraries) {
        EXPECT_TRUE(WasLoaded(library)) << Printed(library);
    }
}

TEST_F(PlantedLibrary, IsNotLoadedByKemba) {
    const demo::Printer printer({.comment = L"by the door"});
    const ProcessResult run = RunProgram(Bring(L"kemba.exe"), {L"/p", printer.Name(), L"get", L"comment"});
    EXPECT_EQ(run.output, Framed("Get", {Printed(printer.Name()) + ": by the door"}));
    EXPECT_EQ(run.status, 0U);
    ExpectNoneWasLoaded();
}

TEST_F(PlantedLibrary, IsNotLoadedByTheServer) {
    const demo::Printer printer({.comment = L"by the door"});
    {
        const Apartment apartment;
        const OwnServer server(Bring(L"kemba-dal.exe"));
        const ComPtr<IDriverAutomation> automation = server.Activate();
        ASSERT_TRUE(automation);
        ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
        EXPECT_EQ(Ask(*automation, &IDriverAutomation::GetComment), L"by the door");
        EXPECT_NE(Ask(*automation, &IDriverAutomation::GetDriverVersion), L"") << "read by VERSION.dll";
    }
    ExpectNoneWasLoaded();
}

} // namespace
