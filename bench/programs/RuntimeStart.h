// What every command is bound to do before its work, and after it.
#pragma once

#include <windows.h>
#include <objbase.h>

namespace bench {

/// Reads the mask of kemba's event log, stores it again, and starts the component runtime; ends that at the
/// end.
class RuntimeStart {
  public:
    RuntimeStart() {
        DWORD mask = 0;
        DWORD size = sizeof mask;
        HKEY key = Open();
        RegQueryValueExW(key, kSource, nullptr, nullptr, reinterpret_cast<BYTE*>(&mask), &size);
        RegCloseKey(key);
        key = Open();
        RegSetValueExW(key, kSource, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&mask), sizeof mask);
        RegCloseKey(key);
        m_started = SUCCEEDED(CoInitialize(nullptr));
    }
    RuntimeStart(const RuntimeStart&) = delete;
    RuntimeStart& operator=(const RuntimeStart&) = delete;
    ~RuntimeStart() { CoUninitialize(); }

    bool Succeeded() const { return m_started; }

  private:
    static constexpr wchar_t kSource[] = L"Brandle KEMBA CLI";

    static HKEY Open() {
        constexpr wchar_t kMasks[] = L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks";
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMasks, 0, KEY_READ | KEY_WRITE, &key);
        return key;
    }

    bool m_started = false;
};

} // namespace bench
