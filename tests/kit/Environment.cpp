// Environment variables, of this process and for started programs.
#include "tests/kit/Environment.h"

#include <windows.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace kit {
namespace {

struct EnvironmentFreer {
    void operator()(wchar_t* strings) const noexcept { FreeEnvironmentStringsW(strings); }
};

struct LessIgnoringCase {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

} // namespace

std::wstring EnvironmentVariable(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    if (size == 0) {
        return {};
    }
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

void EnvironmentPlace::Put(const std::wstring& value) const {
    SetEnvironmentVariableW(name, value.empty() ? nullptr : value.c_str());
}

std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes) {
    std::map<std::wstring, std::wstring, LessIgnoringCase> variables;
    const std::unique_ptr<wchar_t, EnvironmentFreer> own(GetEnvironmentStringsW());
    for (const wchar_t* next = own.get(); *next;) {
        const std::wstring_view entry(next);
        const std::size_t split = entry.find(L'=', 1); // names of the system's own start with "="
        variables[std::wstring(entry.substr(0, split))] = entry.substr(split + 1);
        next += entry.size() + 1;
    }
    for (const auto& [name, value] : changes) {
        variables[name] = value;
    }

    std::wstring block;
    for (const auto& [name, value] : variables) {
        block += name + L'=' + value + L'\0';
    }
    return block + L'\0';
}

} // namespace kit
