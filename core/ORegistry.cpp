// Registry paths, aliases and the calls that use them.
#include "core/ORegistry.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

#include "core/Handles.h"
#include "core/OString.h"
#include "core/OSynchronizer.h"

namespace {

struct Alias {
    const char* name;
    const char* expansion;
};

// Names in square brackets are places for a printer's or server's name; whoever uses such an alias fills them
// in before the path reaches OpenKey.
constexpr Alias kAliases[] = {
    {"CLASSES_ROOT", "0:"},
    {"CURRENT_USER", "1:"},
    {"USER", "1:SOFTWARE/Brandle/Drivers"},
    {"USERSETTINGS", "1:SOFTWARE/Brandle/Drivers/Printers/[PRINTER]/Settings"},
    {"USERSTOCK", "1:SOFTWARE/Brandle/Drivers/Paper Sizes/[PRINTER]"},
    {"USERPAPERSIZES", "1:SOFTWARE/Brandle/Drivers/Printers/[PRINTER]/PrinterDriverData/Paper Sizes"},
    {"LOCAL_MACHINE", "2:"},
    {"CONTROL", "2:SYSTEM/CurrentControlSet/Control"},
    {"PRINT", "2:SYSTEM/CurrentControlSet/Control/Print"},
    {"MONITOR", "2:SYSTEM/CurrentControlSet/Control/Print/Monitors/Brandle Network Monitor"},
    {"PNPDATA", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PnPData"},
    {"DATA", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData"},
    {"CACHE", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Cache"},
    {"DEBUG", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Development"},
    {"FONTS",
     "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Downloaded Fonts"},
    {"MODEL", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Model"},
    {"PAPERSIZES",
     "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Paper Sizes"},
    {"PRESETS", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Presets"},
    {"SECURITY", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Security"},
    {"SETTINGS", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Settings"},
    {"ENUM", "2:SYSTEM/CurrentControlSet/Enum"},
    {"LOCAL", "2:SOFTWARE/Brandle/Drivers"},
    {"CRASHDUMP", "2:SOFTWARE/Brandle/Drivers/Debug/CrashDump"},
    {"STOCK", "2:SOFTWARE/Brandle/Drivers/Paper Sizes"},
    {"GLOBAL", "2:SOFTWARE/Brandle/Drivers/GlobalSettings"},
    {"NETWORK", "2:SOFTWARE/Brandle/Drivers/Network/@[SERVER]"},
    {"PARAMETERSET", "2:SOFTWARE/Brandle/Drivers/Parameter Sets"},
    {"USERS", "3:"},
};

constexpr std::uint32_t kReadWriteAccess = KEY_READ | KEY_WRITE;

using AliasTable = std::map<OString, OString>;

OString InBothForms(const char* text) {
    OString both = text;
    both.MakeBothForms();
    return both;
}

/// The alias table, filled on first use and only read afterwards; it lives until the process ends.
const AliasTable& TheAliases() {
    static OCriticalSection& lock = *new OCriticalSection;
    static AliasTable& table = *new AliasTable;
    static std::atomic<bool> built{false};
    if (!built) {
        const OScopedLock hold(lock);
        if (!built) {
            for (const Alias& alias : kAliases) {
                table.emplace(InBothForms(alias.name), InBothForms(alias.expansion));
            }
            built = true;
        }
    }
    return table;
}

/// Writes doubled separators as escapes and backslashes as "/".
void EscapeDoubled(OString& path) {
    path.ReplaceAll("%%", "%25").ReplaceAll("//", "%2F").ReplaceAll("::", "%3A").ReplaceAll("\\", "/");
}

/// The value of a hexadecimal digit; anything else gives some number, on purpose.
unsigned DigitValue(wchar_t digit) {
    const unsigned byte = digit & 0xFFU;
    return byte - '0' <= 9 ? byte - '0' : (byte & 0x0F) + 9;
}

} // namespace

ORegistry::ORegistry() : ORegistry(OString()) {}

ORegistry::ORegistry(OString basePath) : m_basePath(std::move(basePath)) {
    TheAliases();
}

ORegistry::~ORegistry() = default;

void ORegistry::ExpandAlias(OString& path) const {
    const std::ptrdiff_t colon = path.Find(L':');
    if (colon == OString::kNotFound) {
        return;
    }
    const auto nameLength = static_cast<std::size_t>(colon);
    const auto found = TheAliases().find(path.Left(nameLength).ToUpper());
    if (found == TheAliases().end()) {
        return;
    }
    OString expanded = found->second;
    const wchar_t last = expanded.LastCharacter();
    if (last != 0 && last != L':' && last != L'/') {
        expanded.AppendSlash();
    }
    path = expanded.Append(path.From(nameLength + 1));
}

HKEY ORegistry::OpenKey(const OString& path, bool create) const {
    HKEY root = nullptr;
    OString subkey;
    if (!ResolveRoot(path, root, subkey)) {
        return nullptr;
    }
    HKEY key = nullptr;
    for (const DWORD access : {kReadWriteAccess, static_cast<std::uint32_t>(KEY_READ)}) {
        if (RegOpenKeyExW(root, subkey.Wide(), 0, m_extraAccess | access, &key) == ERROR_SUCCESS) {
            return key;
        }
    }
    if (create && RegCreateKeyExW(root, subkey.Wide(), 0, nullptr, 0, m_extraAccess | kReadWriteAccess,
                                  nullptr, &key, nullptr) == ERROR_SUCCESS) {
        return key;
    }
    return nullptr;
}

std::int32_t ORegistry::ReadValue(const OString& valuePath, void* destination, std::uint32_t capacity) const {
    OString keyPath = m_basePath;
    OString name = valuePath;
    if (!SplitValuePath(keyPath, name)) {
        return kBadPath;
    }
    const OCore::UniqueKey key(OpenKey(keyPath, false));
    if (!key) {
        return kKeyNotOpen;
    }
    // Never without a buffer: the query would then succeed for a value that does not fit.
    std::vector<std::byte> buffer(std::max(capacity, 1U));
    DWORD size = capacity;
    const LSTATUS status = RegQueryValueExW(key.get(), name.Wide(), nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(buffer.data()), &size);
    if (status != ERROR_SUCCESS) {
        return status == ERROR_MORE_DATA ? kMoreData : kFailed;
    }
    if (size > 0) {
        std::memcpy(destination, buffer.data(), std::min<std::size_t>(size, capacity));
    }
    return static_cast<std::int32_t>(size);
}

OString ORegistry::ReadString(const OString& valuePath, const OString& missing) const {
    // Two capacities are tried; a value that is longer than the second is not read, by design.
    for (const std::uint32_t capacity : {0x1FFEU, 0x1FFFEU}) {
        std::vector<wchar_t> buffer(capacity / sizeof(wchar_t) + 1); // one more: the terminator
        const std::int32_t size = ReadValue(valuePath, buffer.data(), capacity);
        if (size > 0) {
            return buffer.data();
        }
        if (size != kMoreData) {
            break;
        }
    }
    return missing;
}

std::int32_t ORegistry::WriteDword(const OString& valuePath, std::uint32_t value) const {
    OString keyPath = m_basePath;
    OString name = valuePath;
    if (!SplitValuePath(keyPath, name)) {
        return kFailed;
    }
    const OCore::UniqueKey key(OpenKey(keyPath, true));
    if (!key || RegSetValueExW(key.get(), name.Wide(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                               sizeof(value)) != ERROR_SUCCESS) {
        return kFailed;
    }
    return sizeof(value);
}

bool ORegistry::SplitValuePath(OString& keyPath, OString& valuePath) const {
    const bool defaultValue = valuePath.IsEmpty();
    EscapeDoubled(keyPath);
    EscapeDoubled(valuePath);

    OString combined;
    if (valuePath.Find(L':', 1) != OString::kNotFound) {
        combined = valuePath;
    } else {
        combined = keyPath.TrimRight("/");
        if (!defaultValue) {
            if (!combined.IsEmpty() && combined.LastCharacter() != L':') {
                combined.AppendSlash();
            }
            combined.Append(valuePath);
        }
    }

    const std::ptrdiff_t separator = combined.FindLastOf(":/");
    if (separator == OString::kNotFound) {
        return false;
    }
    if (defaultValue) {
        keyPath = combined;
    } else {
        const auto at = static_cast<std::size_t>(separator);
        valuePath = combined.From(at + 1);
        DecodePercent(valuePath);
        keyPath = combined.Left(at + 1);
        if (keyPath.LastCharacter() == L'/') {
            keyPath = keyPath.Left(at);
        }
    }
    ExpandAlias(keyPath);
    return true;
}

bool ORegistry::ResolveRoot(const OString& path, HKEY& root, OString& subkey) {
    static const HKEY kRoots[] = {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS};

    const std::ptrdiff_t colon = path.Find(L':');
    if (colon < 1) {
        return false;
    }
    const auto rootLength = static_cast<std::size_t>(colon);
    subkey = path.From(rootLength + 1).ReplaceAll("/", "\\");
    DecodePercent(subkey);
    subkey.TrimRight("\\");

    // A root text that is no number converts to 0 and so means the classes root; kept on purpose.
    const int number = _wtoi(path.Left(rootLength).Wide());
    if (number < 0 || number >= static_cast<int>(std::size(kRoots)) || subkey.IsEmpty()) {
        return false;
    }
    root = kRoots[number];
    return true;
}

void ORegistry::DecodePercent(OString& text) {
    std::ptrdiff_t found = text.Find(L'%');
    while (found > 0 && static_cast<std::size_t>(found) + 2 < text.GetLength()) {
        const auto at = static_cast<std::size_t>(found);
        const unsigned high = DigitValue(text.Left(at + 2).LastCharacter());
        const unsigned code = high * 16 + DigitValue(text.Left(at + 3).LastCharacter());
        text.Delete(at, 3).Insert(at, OString(static_cast<wchar_t>(code & 0xFF)));
        found = text.Find(L'%', at);
    }
}
