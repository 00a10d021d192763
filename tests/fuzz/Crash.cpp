// Crashes by the vectored exception handler and the abort signal.
#include "tests/fuzz/Crash.h"

#include <windows.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "tests/fuzz/GuardedHeap.h"

namespace kit {
namespace {

constexpr UINT kStatus = 3;

void (*g_report)() = nullptr;
bool g_crashing = false;

void Write(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    char text[400];
    switch (record.ExceptionCode) {
    case EXCEPTION_ACCESS_VIOLATION: {
        const auto address = static_cast<std::uintptr_t>(record.ExceptionInformation[1]);
        char place[200];
        GuardedHeap::Describe(reinterpret_cast<const void*>(address), place, sizeof(place));
        std::snprintf(text, sizeof(text), "access violation %s %#llx%s%s",
                      record.ExceptionInformation[0] == 0 ? "reading" : "writing",
                      static_cast<unsigned long long>(address), place[0] ? ", " : "", place);
        break;
    }
    case EXCEPTION_ILLEGAL_INSTRUCTION:
        std::snprintf(text, sizeof(text), "undefined behaviour trapped");
        break;
    case EXCEPTION_STACK_OVERFLOW: std::snprintf(text, sizeof(text), "stack overflow"); break;
    case EXCEPTION_INT_DIVIDE_BY_ZERO: std::snprintf(text, sizeof(text), "division by zero"); break;
    default: return EXCEPTION_CONTINUE_SEARCH; // a C++ exception, for one
    }
    const std::size_t length = std::strlen(text);
    std::snprintf(text + length, sizeof(text) - length, " at code address %p", record.ExceptionAddress);
    Crash(text);
}

void OnAbort(int) {
    Crash("abort: a failed assertion of the library, or an uncaught exception");
}

} // namespace

void ReportCrashes(void (*report)()) {
    static const bool once = [] {
        ULONG stack = 64 * 1024; // to report a stack overflow on
        SetThreadStackGuarantee(&stack);
        return AddVectoredExceptionHandler(1, OnException) && std::signal(SIGABRT, OnAbort) != SIG_ERR;
    }();
    g_report = once ? report : nullptr;
}

void Crash(const char* what) {
    if (!g_crashing) {
        g_crashing = true;
        Write("crash: ");
        Write(what);
        Write("\n");
        if (g_report) {
            g_report();
        }
    }
    TerminateProcess(GetCurrentProcess(), kStatus);
    for (;;) {
    }
}

} // namespace kit
