// Environment variables for started programs.
#pragma once

#include <map>
#include <string>

namespace kit {

/// The variable's value; empty when there is none.
std::wstring EnvironmentVariable(const wchar_t* name);

/// This process's environment with some variables added or replaced (their names compared ignoring case), in
/// the form that CreateProcessW takes.
std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes);

} // namespace kit
