// Environment variables, of this process and for started programs.
#pragma once

#include <map>
#include <string>

#include "tests/kit/SetAside.h"

namespace kit {

/// The variable's value; empty when there is none.
std::wstring EnvironmentVariable(const wchar_t* name);

/// A variable of this process; an empty value is none.
struct EnvironmentPlace {
    const wchar_t* name;

    std::wstring Get() const { return EnvironmentVariable(name); }
    void Put(const std::wstring& value) const;
};
using EnvironmentPreset = SetAside<EnvironmentPlace>;

/// This process's environment with some variables added or replaced (their names compared ignoring case), in
/// the form that CreateProcessW takes.
std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes);

} // namespace kit
