// The built server program, run by a test.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

/// Runs the program beside the test program with the given words and waits for its end; its exit status, or
/// -1 when it did not start or end within a minute. `errors` gets what it wrote to standard error.
int RunServerProgram(const std::wstring& words, std::string* errors = nullptr);

/// Runs a script with the script host, which gets the arguments as well, and waits for its end; likewise.
/// `output` gets what it wrote.
int RunScript(const std::wstring& file, const std::wstring& arguments, std::string& output);

/// Full path of the server program.
std::wstring ServerProgramPath();

/// Process identifiers of all running server programs.
std::vector<DWORD> RunningServers();

/// The text of a registry value, or nothing when there is none; an empty `value` is the key's own.
std::optional<std::wstring> ReadRegistryText(HKEY root, const std::wstring& key,
                                             const std::wstring& value = {});

/// Every key and value below a key, one line each, in the registry's order.
std::vector<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& key);
