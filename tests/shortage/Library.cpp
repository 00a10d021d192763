// The library that a kemba built for these tests imports besides its own: it comes first in the process,
// stands between the program and its allocations, and is its automation server, its print spooler and its
// registry, so that every run finds the same.
//
// The printers are "Dock 1", the default one, and "Dock 2". Everything is logged, and the system has a
// release.
#include <windows.h>
#include <io.h>
#include <objbase.h>
#include <winspool.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Holdings.h"
#include "tests/kit/ImportPatch.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Script.h"
#include "tests/kit/TextWatch.h"
#include "tests/shortage/Arena.h"
#include "tests/shortage/Record.h"
#include "tests/shortage/Snapshot.h"

using namespace kit;

namespace {

constexpr const wchar_t* kPrinters[] = {L"Dock 1", L"Dock 2"};

HMODULE g_library = nullptr;
Board g_ownBoard; // where nobody asked for one
Board* g_board = &g_ownBoard;
Record* g_record = &g_ownBoard.single;
FakeServer* g_server = nullptr; // made at the first initialisation of the component runtime
long g_initialisations = 0;
RepeatedRun* g_repeated = nullptr; // the present one of several runs
void* g_restart[5];                // where a repeated run goes on when it has ended

decltype(&::CoInitialize) g_coInitialize = nullptr;
decltype(&::CoUninitialize) g_coUninitialize = nullptr;
decltype(&::TerminateProcess) g_terminateProcess = nullptr;
decltype(&::LoadLibraryExW) g_loadLibraryEx = nullptr;
void (*g_exit)(int) = nullptr;

std::string Variable(const char* name) {
    char value[512];
    const DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
    return {value, length < sizeof value ? length : 0};
}

bool MayAllocate(const char* call) {
    const LONG number = InterlockedIncrement(&g_record->allocations);
    const LONG first = g_record->firstRefused;
    const bool refused = first > 0 && (number == first || (g_record->isLasting && number > first));
    if (refused && g_record->refusedCall[0] == 0) {
        lstrcpynA(g_record->refusedCall, call, sizeof g_record->refusedCall);
    }
    return !refused;
}

void Journalize(const std::string& call) {
    const auto position = static_cast<std::size_t>(g_record->journalBytes);
    const std::size_t room = sizeof g_record->journal - position;
    const std::size_t size = std::min(room, call.size() + 1);
    std::memcpy(g_record->journal + position, (call + '\n').data(), size);
    g_record->journalBytes += static_cast<LONG>(size);
}

/// Makes operations fail as the variable says: "IPrinterQueue.Purge=80004005", and more such after a ";".
/// "#2" behind the operation's name means the second object alone, "+" at the end adds error information.
void FailingCalls(FakeServer& server) {
    std::string entries = Variable(kServerVariable);
    for (std::size_t end = 0; !entries.empty(); entries.erase(0, end)) {
        end = std::min(entries.find(';'), entries.size());
        const std::string entry = entries.substr(0, end);
        end += end < entries.size() ? 1 : 0;
        const std::size_t equals = entry.find('=');
        const std::size_t number = std::min(entry.find('#'), equals);
        const auto status = static_cast<HRESULT>(std::strtoul(entry.c_str() + equals + 1, nullptr, 16));
        Rule& rule = server.Fail(entry.substr(0, number), status);
        if (number < equals) {
            rule.ForObject(std::atoi(entry.c_str() + number + 1));
        }
        if (entry.back() == '+') {
            rule.WithInformation(L"Driver", L"Out of paper");
        }
    }
}

HRESULT WINAPI Initialize(void* reserved) {
    if (!g_server) {
        g_server = new FakeServer;
        g_server->FollowCalls(Journalize);
        FailingCalls(*g_server);
    }
    ++g_initialisations;
    return g_coInitialize(reserved);
}

void WINAPI Uninitialize() {
    --g_initialisations;
    g_coUninitialize();
}

/// The spooler's library is this one; see the exports below.
HMODULE WINAPI Load(const wchar_t* path, HANDLE file, DWORD flags) {
    constexpr std::wstring_view kSpooler = L"winspool.drv";
    const std::size_t length = std::wcslen(path);
    const bool isSpooler =
        length > kSpooler.size() && _wcsicmp(path + length - kSpooler.size(), kSpooler.data()) == 0;
    return isSpooler ? g_library : g_loadLibraryEx(path, file, flags);
}

/// The registry: every key is there, and in each of them these values.
struct Value {
    const wchar_t* name;
    DWORD type;
    const void* bytes;
    DWORD size;
};
constexpr DWORD kAllBits = 0xFFFFFFFF;
constexpr wchar_t kRelease[] = L"2009";
constexpr Value kValues[] = {
    {L"Brandle KEMBA CLI", REG_DWORD, &kAllBits, sizeof kAllBits},
    {L"ReleaseId", REG_SZ, kRelease, sizeof kRelease},
};

LSTATUS WINAPI OpenAnyKey(HKEY, const wchar_t*, DWORD, REGSAM, HKEY* key) {
    *key = HKEY_CURRENT_USER; // any but null
    return ERROR_SUCCESS;
}

LSTATUS WINAPI CreateKey(HKEY root, const wchar_t* path, DWORD, wchar_t*, DWORD, REGSAM access,
                         SECURITY_ATTRIBUTES*, HKEY* key, DWORD*) {
    return OpenAnyKey(root, path, 0, access, key);
}

LSTATUS WINAPI CloseKey(HKEY) {
    return ERROR_SUCCESS;
}

LSTATUS WINAPI QueryValue(HKEY, const wchar_t* name, DWORD*, DWORD* type, BYTE* bytes, DWORD* size) {
    const auto* const value = std::find_if(std::begin(kValues), std::end(kValues), [name](const Value& each) {
        return _wcsicmp(each.name, name) == 0;
    });
    if (value == std::end(kValues)) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (type) {
        *type = value->type;
    }
    const DWORD room = std::exchange(*size, value->size);
    if (bytes && room < value->size) {
        return ERROR_MORE_DATA;
    }
    if (bytes) {
        std::memcpy(bytes, value->bytes, value->size);
    }
    return ERROR_SUCCESS;
}

LSTATUS WINAPI SetValue(HKEY, const wchar_t*, DWORD, DWORD, const BYTE*, DWORD) {
    return ERROR_SUCCESS;
}

void NoteFault(const std::string& fault) {
    const std::size_t length = std::strlen(g_record->faults);
    lstrcpynA(g_record->faults + length, (fault + '\n').c_str(),
              static_cast<int>(sizeof g_record->faults - length));
}

/// The program has done its work.
void NoteReturn() {
    g_record->allocationsAtReturn = g_record->allocations;
    Holdings held = Held();
    g_record->heapBlocks = held.heapBlocks;
    g_record->handles = held.handles;
    held.heapBlocks = held.handles = 0; // of which process-wide objects hold some
    held.texts += TextWatch::Given();
    for (const std::string& fault : Differences({}, held)) {
        NoteFault(fault);
    }
    if (g_server) {
        for (const std::string& fault : g_server->Faults()) {
            NoteFault(fault);
        }
    }
    g_record->isComplete = 1;
}

[[noreturn]] void EndRepeated(UINT status) {
    g_repeated->status = static_cast<LONG>(status);
    __builtin_longjmp(g_restart, 1);
}

[[noreturn]] void Exit(int status) {
    NoteReturn();
    if (g_repeated) {
        EndRepeated(static_cast<UINT>(status));
    }
    g_exit(status);
    std::abort();
}

BOOL WINAPI Terminate(HANDLE process, UINT status) {
    if (g_repeated && process == GetCurrentProcess()) {
        EndRepeated(status);
    }
    return g_terminateProcess(process, status);
}

LONG OutputSize() {
    std::fflush(stdout);
    return _lseek(_fileno(stdout), 0, SEEK_CUR);
}

/// What one of several runs leaves in the process, beside the program's own state.
void CleanUp() {
    for (; g_initialisations > 0; --g_initialisations) {
        g_coUninitialize();
    }
    delete g_server;
    g_server = nullptr;
}

/// One of several runs. The frame stays while the program runs above it, and is where its end leads back to.
[[gnu::noinline]] void RunOnce(int (*program)(int, wchar_t*[]), int argumentCount, wchar_t* arguments[]) {
    if (__builtin_setjmp(g_restart) == 0) {
        Exit(program(argumentCount, arguments));
    }
}

/// Runs the program for each point on the board, each time from the state in which it is now.
[[noreturn]] void RunRepeatedly(int (*program)(int, wchar_t*[]), int argumentCount, wchar_t* arguments[]) {
    const Snapshot snapshot(GetModuleHandleW(nullptr));
    const Holdings held = Held();
    const LONG allocations = g_record->allocations;
    for (g_repeated = g_board->repeated; g_repeated != g_board->repeated + g_board->runs; ++g_repeated) {
        snapshot.Restore();
        SetHeld(held);
        TextWatch::ForgetGiven();
        g_record = &g_repeated->record;
        g_record->allocations = g_record->allocationsAtStart = allocations;
        g_repeated->outputBegin = OutputSize();
        SetLastError(ERROR_SUCCESS);
        RunOnce(program, argumentCount, arguments);
        g_repeated->outputEnd = OutputSize();
        CleanUp();
        g_repeated->isEnded = 1;
    }
    // Not by the ordinary end: what the C runtime is to do there belongs to none of the runs alone.
    TerminateProcess(GetCurrentProcess(), 0);
    std::abort();
}

/// Ends the program where it crashes, before anybody offers to debug it.
LONG WINAPI EndAtCrash(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    const bool isCrash = code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_STACK_OVERFLOW ||
                         code == EXCEPTION_ILLEGAL_INSTRUCTION || code == EXCEPTION_PRIV_INSTRUCTION ||
                         code == EXCEPTION_INT_DIVIDE_BY_ZERO;
    if (isCrash) {
        TerminateProcess(GetCurrentProcess(), code);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

void ShareBoard() {
    const std::string name = Variable(kBoardVariable);
    const UniqueHandle memory(OpenFileMappingA(FILE_MAP_WRITE, FALSE, name.c_str()));
    if (!memory) {
        return;
    }
    if (void* const view = MapViewOfFile(memory.get(), FILE_MAP_WRITE, 0, 0, sizeof(Board))) {
        g_board = static_cast<Board*>(view);
    }
    g_record = &g_board->single;
}

void TakePoint() {
    constexpr std::string_view kOnce = "once:";
    constexpr std::string_view kLasting = "lasting:";
    const std::string point = Variable(kPointVariable);
    g_record->isLasting = point.starts_with(kLasting);
    if (g_record->isLasting || point.starts_with(kOnce)) {
        g_record->firstRefused = std::atoi(point.c_str() + (g_record->isLasting ? kLasting : kOnce).size());
    }
}

template<class Call>
void Replace(const char* name, Call replacement, Call* real = nullptr) {
    void* const found = PatchImport(GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(replacement));
    if (real) {
        *real = reinterpret_cast<Call>(found);
    }
    if (!found) {
        std::fprintf(stderr, "the program does not import %s\n", name);
        TerminateProcess(GetCurrentProcess(), 99);
    }
}

/// How both enumerations of printers answer: one entry per printer, with its name where the level has it.
template<class Entry>
BOOL List(wchar_t* Entry::* name, std::size_t count, BYTE* buffer, DWORD size, DWORD* needed, DWORD* given) {
    *needed = static_cast<DWORD>(count * sizeof(Entry));
    *given = 0;
    if (size < *needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    auto* const entries = reinterpret_cast<Entry*>(buffer);
    for (std::size_t index = 0; index < count; ++index) {
        entries[index] = {};
        entries[index].*name = const_cast<wchar_t*>(kPrinters[index]);
    }
    *given = static_cast<DWORD>(count);
    return TRUE;
}

} // namespace

extern "C" {

/// What the program's first line is replaced by.
int ShortageMain(int (*program)(int, wchar_t*[]), int argumentCount, wchar_t* arguments[]) {
    g_record->allocationsAtStart = g_record->allocations;
    if (g_board->runs > 0) {
        RunRepeatedly(program, argumentCount, arguments);
    }
    return program(argumentCount, arguments);
}

BOOL WINAPI EnumPrintersW(DWORD, wchar_t*, DWORD, BYTE* buffer, DWORD size, DWORD* needed, DWORD* given) {
    return List(&PRINTER_INFO_1W::pName, std::size(kPrinters), buffer, size, needed, given);
}

BOOL WINAPI OpenPrinterW(wchar_t* name, HANDLE* printer, PRINTER_DEFAULTSW*) {
    const auto* const found =
        std::find_if(std::begin(kPrinters), std::end(kPrinters),
                     [name](const wchar_t* known) { return _wcsicmp(name, known) == 0; });
    if (found == std::end(kPrinters)) {
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return FALSE;
    }
    *printer = const_cast<wchar_t**>(found);
    return TRUE;
}

BOOL WINAPI ClosePrinter(HANDLE) {
    return TRUE;
}

BOOL WINAPI GetDefaultPrinterW(wchar_t* name, DWORD* characters) {
    const auto needed = static_cast<DWORD>(std::wcslen(kPrinters[0]) + 1);
    if (!name || *characters < needed) {
        *characters = needed;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::wmemcpy(name, kPrinters[0], needed);
    return TRUE;
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        g_library = library;
        AddVectoredExceptionHandler(TRUE, EndAtCrash);
        ShareBoard();
        TakePoint();
        const HMODULE program = GetModuleHandleW(nullptr);
        if (g_board->runs > 0) {
            UseArena(program);
            Snapshot::WatchSlots(program);
        }
        Replace("CoInitialize", &Initialize, &g_coInitialize);
        Replace("CoUninitialize", &Uninitialize, &g_coUninitialize);
        Replace("LoadLibraryExW", &Load, &g_loadLibraryEx);
        Replace("TerminateProcess", &Terminate, &g_terminateProcess);
        Replace("exit", &Exit, &g_exit);
        Replace("RegOpenKeyExW", &OpenAnyKey);
        Replace("RegCreateKeyExW", &CreateKey);
        Replace("RegCloseKey", &CloseKey);
        Replace("RegQueryValueExW", &QueryValue);
        Replace("RegSetValueExW", &SetValue);
        WatchHoldings(program, MayAllocate);
    }
    return TRUE;
}
}
