// From the text that names a registry value to its key, name and contents.
#include <windows.h>

#include "bench/micro/Micro.h"
#include "core/Handles.h"
#include "core/ORegistry.h"
#include "core/OString.h"

namespace {

// As the program has them: its log mask, and the release that `version` prints.
constexpr const char* kMask = "LOCAL:DebugLogMasks\\Brandle KEMBA CLI";
constexpr const char* kRelease = "LOCAL_MACHINE:SOFTWARE/Microsoft/Windows NT/CurrentVersion/ReleaseId";

auto Splitting(const char* path) {
    return [path] {
        const ORegistry registry;
        OString key;
        OString value = path;
        return registry.SplitValuePath(key, value);
    };
}

auto Reading() {
    return [] { return ORegistry().ReadString(kRelease, L"none"); };
}

/// The same calls for a key that is written as the system wants it.
auto BareReading() {
    return [] {
        wchar_t text[4096] = {};
        DWORD size = sizeof(text) - sizeof(wchar_t);
        HKEY opened = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", 0,
                      KEY_READ | KEY_WRITE, &opened);
        const OCore::UniqueKey key(opened);
        RegQueryValueExW(key.get(), L"ReleaseId", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
        return text[0];
    };
}

} // namespace

void micro::RegisterPath() {
    Measure("Path/Split/Mask", [] { return Splitting(kMask); });
    Measure("Path/Split/Release", [] { return Splitting(kRelease); });
    Measure("Path/Resolve", [] {
        return [path = OString("2:SOFTWARE/Brandle/Drivers/DebugLogMasks")] {
            HKEY root = nullptr;
            OString subkey;
            return ORegistry::ResolveRoot(path, root, subkey);
        };
    });
    Pair("Path/Read", Reading, BareReading);
}
