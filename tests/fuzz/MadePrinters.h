// Printers that the spooler's answers make up, and the system's version, by which the default one is asked
// for.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <cstddef>
#include <string>

#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/Printed.h"
#include "tests/kit/SetAside.h"

namespace kit {

/// What the system is to answer.
struct World {
    DWORD platform = VER_PLATFORM_WIN32_NT;
    DWORD major = 10;
    bool enumerates = true;
    Words printers;
    std::wstring defaultPrinter;
};
inline const World* g_world; // the one in force

inline BOOL WINAPI EnumMade(DWORD, LPWSTR, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed,
                            LPDWORD count) {
    const OrdinaryHeap ordinary;
    const Words names = level == 5 ? Words(g_world->defaultPrinter.empty() ? 0 : 1, g_world->defaultPrinter)
                                   : g_world->printers;
    const std::size_t entry = level == 5 ? sizeof(PRINTER_INFO_5W) : sizeof(PRINTER_INFO_1W);
    std::size_t wanted = names.size() * entry;
    for (const std::wstring& name : names) {
        wanted += (name.size() + 1) * sizeof(wchar_t);
    }
    *needed = static_cast<DWORD>(wanted);
    *count = 0;
    if (size < wanted) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (buffer && !g_world->enumerates) {
        return FALSE;
    }
    auto* text = reinterpret_cast<wchar_t*>(buffer + names.size() * entry);
    for (const std::wstring& name : names) {
        BYTE* const at = buffer + *count * entry;
        (level == 5 ? reinterpret_cast<PRINTER_INFO_5W*>(at)->pPrinterName
                    : reinterpret_cast<PRINTER_INFO_1W*>(at)->pName) = text;
        text[name.copy(text, name.size())] = 0;
        text += name.size() + 1;
        ++*count;
    }
    return TRUE;
}

inline BOOL WINAPI GetMadeDefault(LPWSTR buffer, LPDWORD size) {
    const std::wstring& name = g_world->defaultPrinter;
    const auto wanted = static_cast<DWORD>(name.size() + 1);
    const bool fits = buffer && *size >= wanted;
    *size = wanted;
    if (name.empty() || !fits) {
        SetLastError(name.empty() ? ERROR_FILE_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    buffer[name.copy(buffer, name.size())] = 0;
    return TRUE;
}

inline DWORD WINAPI GetMadeProfile(LPCWSTR, LPCWSTR, LPCWSTR, LPWSTR buffer, DWORD size) {
    const std::wstring line =
        g_world->defaultPrinter.empty() ? L"" : g_world->defaultPrinter + L",driver,port";
    const std::size_t length = line.copy(buffer, size - 1);
    buffer[length] = 0;
    return static_cast<DWORD>(length);
}

inline BOOL WINAPI GetMadeVersion(OSVERSIONINFOW* version) {
    version->dwPlatformId = g_world->platform;
    version->dwMajorVersion = g_world->major;
    return TRUE;
}

inline World DrawWorld(Case& input) {
    const OrdinaryHeap ordinary;
    World world;
    world.platform = static_cast<DWORD>(input.OnceIn(4) ? input.Below(4) : VER_PLATFORM_WIN32_NT);
    world.major = static_cast<DWORD>(input.OnceIn(4) ? 4 : 5 + input.Below(6));
    world.enumerates = !input.OnceIn(8);
    for (std::size_t left = input.Length(5); left > 0; --left) {
        world.printers.push_back(L"p" + input.WideText(40));
    }
    world.defaultPrinter = input.OnceIn(4) ? L"" : L"d" + input.Name(40);
    return world;
}

/// Draws a world, which is in force while this lives. Opening a printer still goes to the spooler itself.
class MadePrinters {
  public:
    explicit MadePrinters(Case& input) : m_world(DrawWorld(input)) {
        g_world = &m_world;
        m_calls->enumPrinters = &EnumMade;
        m_calls->findGetDefaultPrinter = [] { return &GetMadeDefault; };
        m_calls->getProfileString = &GetMadeProfile;
        m_calls->getVersionEx = &GetMadeVersion;
    }

    const World& GetWorld() const { return m_world; }

  private:
    const World m_world;
    const SystemCallsPreset m_calls;
};

} // namespace kit
