// What the built server program leaves to see: its processes and its registry entries.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace kit {

/// Process identifiers of all running server programs.
std::vector<DWORD> RunningServers();

/// The text of a registry value, or nothing when there is none; an empty `value` is the key's own. `view` is
/// KEY_WOW64_64KEY or KEY_WOW64_32KEY.
std::optional<std::wstring> ReadRegistryText(HKEY root, const std::wstring& key,
                                             const std::wstring& value = {}, REGSAM view = KEY_WOW64_64KEY);

/// Every key and value below a key, types included, one line each, in the registry's order.
std::vector<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& key, REGSAM view = KEY_WOW64_64KEY);

} // namespace kit
