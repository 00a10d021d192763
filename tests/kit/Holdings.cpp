// Counting imports.
#include "tests/kit/Holdings.h"

#include <oleauto.h>
#include <winspool.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tests/kit/ImportPatch.h"

namespace kit {
namespace {

using Kind = long Holdings::*;

Holdings g_held;
AllocationGate g_gate = nullptr;

void Count(Kind kind, long change) {
    InterlockedExchangeAdd(&(g_held.*kind), change);
}

/// A call's name as a template argument.
template<std::size_t Size>
struct Name {
    char text[Size];
    consteval Name(const char (&literal)[Size]) { std::copy_n(literal, Size, text); } // NOLINT: stands for it
};

/// The real call, found when the import is patched.
template<Name name>
void* g_real = nullptr;

bool IsMade(const void* block) {
    return block && block != INVALID_HANDLE_VALUE;
}
bool IsMade(BOOL done) {
    return done != FALSE;
}
bool IsMade(LSTATUS status) {
    return status == ERROR_SUCCESS;
}

/// Counts what the call gave.
template<Name name, Kind kind, class Call>
struct Opening;
template<Name name, Kind kind, class Result, class... Arguments>
struct Opening<name, kind, Result (*)(Arguments...)> {
    static Result Do(Arguments... arguments) {
        const Result result = reinterpret_cast<Result (*)(Arguments...)>(g_real<name>)(arguments...);
        if (IsMade(result)) {
            Count(kind, 1);
        }
        return result;
    }
};

/// Counts what was given back.
template<Name name, Kind kind, class Call>
struct Closing;
template<Name name, Kind kind, class Result, class Argument>
struct Closing<name, kind, Result (*)(Argument)> {
    static Result Do(Argument argument) {
        const Result result = reinterpret_cast<Result (*)(Argument)>(g_real<name>)(argument);
        if (IsMade(result)) {
            Count(kind, -1);
        }
        return result;
    }
};

/// Gives memory unless the gate is shut, and counts it.
template<Name name, Kind kind, class Call>
struct Allocating;
template<Name name, Kind kind, class Result, class... Arguments>
struct Allocating<name, kind, Result (*)(Arguments...)> {
    static Result Do(Arguments... arguments) {
        if (g_gate && !g_gate(name.text)) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        const Result result = reinterpret_cast<Result (*)(Arguments...)>(g_real<name>)(arguments...);
        if (result) {
            Count(kind, 1);
        }
        return result;
    }
};

template<Name name>
using HeapAllocating = Allocating<name, &Holdings::heapBlocks, void* (*)(std::size_t)>;

constexpr Name kRealloc("realloc");
using Realloc = void* (*)(void*, std::size_t);
void* CountingRealloc(void* block, std::size_t size) {
    if (g_gate && size > 0 && !g_gate("realloc")) {
        return nullptr;
    }
    void* const result = reinterpret_cast<Realloc>(g_real<kRealloc>)(block, size);
    const long made = result && !block ? 1 : 0;
    const long freed = block && size == 0 ? 1 : 0;
    Count(&Holdings::heapBlocks, made - freed);
    return result;
}

constexpr Name kFree("free");
using Free = void (*)(void*);
void CountingFree(void* block) {
    if (block) {
        Count(&Holdings::heapBlocks, -1);
    }
    reinterpret_cast<Free>(g_real<kFree>)(block);
}

constexpr Name kLocalFree("LocalFree");
using LocalFreeCall = decltype(&::LocalFree);
HLOCAL CountingLocalFree(HLOCAL block) {
    if (block) {
        Count(&Holdings::localBlocks, -1);
    }
    return reinterpret_cast<LocalFreeCall>(g_real<kLocalFree>)(block);
}

constexpr Name kFormatMessage("FormatMessageW");
using FormatMessageCall = decltype(&::FormatMessageW);
DWORD CountingFormatMessage(DWORD flags, const void* source, DWORD message, DWORD language, wchar_t* buffer,
                            DWORD size, va_list* arguments) {
    const bool allocates = (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
    if (allocates && g_gate && !g_gate("FormatMessageW")) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    const DWORD length = reinterpret_cast<FormatMessageCall>(g_real<kFormatMessage>)(
        flags, source, message, language, buffer, size, arguments);
    if (allocates && length > 0) {
        Count(&Holdings::localBlocks, 1);
    }
    return length;
}

constexpr Name kSysFreeString("SysFreeString");
using SysFreeStringCall = decltype(&::SysFreeString);
void CountingSysFreeString(BSTR text) {
    if (text) {
        Count(&Holdings::texts, -1);
    }
    reinterpret_cast<SysFreeStringCall>(g_real<kSysFreeString>)(text);
}

FARPROC WatchedGetProcAddress(HMODULE library, const char* name);
constexpr Name kGetProcAddress("GetProcAddress");

struct Row {
    std::string_view name;
    void* replacement;
    void** real;
};

template<Name name, class Call>
Row MakeRow(Call replacement) {
    return {name.text, reinterpret_cast<void*>(replacement), &g_real<name>};
}
template<template<Name, Kind, class> class Watch, Name name, Kind kind, class Call>
Row MakeRow() {
    return MakeRow<name, Call>(&Watch<name, kind, Call>::Do);
}

/// Every call by which something is got or given back.
std::vector<Row>& TheRows() {
    using H = Holdings;
    static std::vector<Row>& rows = *new std::vector<Row>{
        MakeRow<"malloc">(&HeapAllocating<"malloc">::Do),
        MakeRow<Allocating, "calloc", &H::heapBlocks, void* (*)(std::size_t, std::size_t)>(),
        MakeRow<kRealloc>(&CountingRealloc),
        MakeRow<Allocating, "_strdup", &H::heapBlocks, char* (*)(const char*)>(),
        MakeRow<kFree>(&CountingFree),
        MakeRow<Allocating, "LocalAlloc", &H::localBlocks, decltype(&::LocalAlloc)>(),
        MakeRow<kLocalFree>(&CountingLocalFree),
        MakeRow<kFormatMessage>(&CountingFormatMessage),
        MakeRow<Allocating, "SysAllocString", &H::texts, decltype(&::SysAllocString)>(),
        MakeRow<Allocating, "SysAllocStringLen", &H::texts, decltype(&::SysAllocStringLen)>(),
        MakeRow<Allocating, "SysAllocStringByteLen", &H::texts, decltype(&::SysAllocStringByteLen)>(),
        MakeRow<kSysFreeString>(&CountingSysFreeString),
        MakeRow<Opening, "RegOpenKeyExW", &H::registryKeys, decltype(&::RegOpenKeyExW)>(),
        MakeRow<Opening, "RegCreateKeyExW", &H::registryKeys, decltype(&::RegCreateKeyExW)>(),
        MakeRow<Closing, "RegCloseKey", &H::registryKeys, decltype(&::RegCloseKey)>(),
        MakeRow<Opening, "CreateFileW", &H::handles, decltype(&::CreateFileW)>(),
        MakeRow<Opening, "CreateEventA", &H::handles, decltype(&::CreateEventA)>(),
        MakeRow<Opening, "CreateEventW", &H::handles, decltype(&::CreateEventW)>(),
        MakeRow<Opening, "CreateMutexW", &H::handles, decltype(&::CreateMutexW)>(),
        MakeRow<Opening, "CreateSemaphoreA", &H::handles, decltype(&::CreateSemaphoreA)>(),
        MakeRow<Opening, "CreateSemaphoreW", &H::handles, decltype(&::CreateSemaphoreW)>(),
        MakeRow<Opening, "DuplicateHandle", &H::handles, decltype(&::DuplicateHandle)>(),
        MakeRow<Opening, "OpenProcess", &H::handles, decltype(&::OpenProcess)>(),
        MakeRow<Opening, "OpenThread", &H::handles, decltype(&::OpenThread)>(),
        MakeRow<Closing, "CloseHandle", &H::handles, decltype(&::CloseHandle)>(),
        MakeRow<Opening, "OpenPrinterW", &H::printers, decltype(&::OpenPrinterW)>(),
        MakeRow<Opening, "AddPrinterW", &H::printers, decltype(&::AddPrinterW)>(),
        MakeRow<Closing, "ClosePrinter", &H::printers, decltype(&::ClosePrinter)>(),
        MakeRow<kGetProcAddress>(&WatchedGetProcAddress),
    };
    return rows;
}

FARPROC WatchedGetProcAddress(HMODULE library, const char* name) {
    const FARPROC found =
        reinterpret_cast<decltype(&WatchedGetProcAddress)>(g_real<kGetProcAddress>)(library, name);
    const bool isOrdinal = (reinterpret_cast<ULONG_PTR>(name) >> 16) == 0;
    if (!found || isOrdinal) {
        return found;
    }
    const auto row = std::ranges::find(TheRows(), std::string_view(name), &Row::name);
    if (row == TheRows().end()) {
        return found;
    }
    *row->real = reinterpret_cast<void*>(found);
    return reinterpret_cast<FARPROC>(row->replacement);
}

} // namespace

void WatchHoldings(HMODULE module, AllocationGate gate) {
    TheRows(); // made before anything counts
    g_gate = gate;
    for (const Row& row : TheRows()) {
        if (void* const real = PatchImport(module, row.name, row.replacement)) {
            *row.real = real;
        }
    }
}

Holdings Held() {
    return g_held;
}

void SetHeld(const Holdings& held) {
    g_held = held;
}

std::vector<std::string> Differences(const Holdings& before, const Holdings& after) {
    constexpr struct {
        const char* name;
        Kind kind;
    } kKinds[] = {
        {"heap blocks", &Holdings::heapBlocks},
        {"local blocks", &Holdings::localBlocks},
        {"texts", &Holdings::texts},
        {"registry keys", &Holdings::registryKeys},
        {"handles", &Holdings::handles},
        {"printers", &Holdings::printers},
    };
    std::vector<std::string> lines;
    for (const auto& [name, kind] : kKinds) {
        const long change = after.*kind - before.*kind;
        if (change > 0) {
            lines.push_back("not given back: " + std::to_string(change) + " " + name);
        }
        if (change < 0) {
            lines.push_back("given back once too often: " + std::to_string(-change) + " " + name);
        }
    }
    return lines;
}

} // namespace kit
