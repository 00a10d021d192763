// Calls of the registry, with failures that name the key.
#include "substitute/registration/RegistryKeys.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "substitute/base/Failure.h"

namespace kemba::substitute {
namespace {

/// Throws unless the call succeeded.
void Look(LSTATUS error, const wchar_t* what, const std::wstring& path) {
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(std::wstring(what) + L" the registry key \"" + path + L"\" failed",
                             static_cast<DWORD>(error));
    }
}

/// Throws unless the call succeeded or met a missing key or value. Whether it succeeded.
bool Found(LSTATUS error, const wchar_t* what, const std::wstring& path) {
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
        return false;
    }
    Look(error, what, path);
    return true;
}

REGSAM ViewOf(const KeyPlace& place) {
    return static_cast<REGSAM>(place.view);
}

void RemoveEmptied(const KeyPlace& place) {
    Found(RegDeleteKeyExW(place.root, place.path.c_str(), ViewOf(place), 0), L"removing", place.path);
}

std::wstring WithVariables(const std::wstring& text) {
    std::wstring filled;
    DWORD length = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
    while (length > filled.size()) {
        filled.resize(length);
        length = ExpandEnvironmentStringsW(text.c_str(), filled.data(), length);
    }
    if (length == 0) {
        throw WindowsFailure(L"filling in \"" + text + L"\" failed", GetLastError());
    }
    filled.resize(length - 1); // less the zero
    return filled;
}

} // namespace

RegistryValue TextValue(const std::wstring& text) {
    const auto* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return {REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)}};
}

RegistryValue NumberValue(DWORD number) {
    const auto* const bytes = reinterpret_cast<const BYTE*>(&number);
    return {REG_DWORD, {bytes, bytes + sizeof(number)}};
}

RegistryKey RegistryKey::Open(const KeyPlace& place, REGSAM access) {
    HKEY opened = nullptr;
    Found(RegOpenKeyExW(place.root, place.path.c_str(), 0, access | ViewOf(place), &opened), L"opening",
          place.path);
    return {opened, place.path};
}

RegistryKey RegistryKey::Make(const KeyPlace& place) {
    HKEY made = nullptr;
    Look(RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE | ViewOf(place),
                         nullptr, &made, nullptr),
         L"making", place.path);
    return {made, place.path};
}

bool RegistryKey::IsEmpty() const {
    DWORD keys = 0;
    DWORD values = 0;
    if (m_key) {
        Look(RegQueryInfoKeyW(m_key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                              nullptr, nullptr, nullptr, nullptr),
             L"reading", m_path);
    }
    return keys == 0 && values == 0;
}

DWORD RegistryKey::CountSubkeys() const {
    DWORD keys = 0;
    if (m_key) {
        Look(RegQueryInfoKeyW(m_key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr,
                              nullptr, nullptr, nullptr, nullptr),
             L"reading", m_path);
    }
    return keys;
}

std::optional<RegistryValue> RegistryKey::Read(const std::wstring& name) const {
    if (!m_key) {
        return std::nullopt;
    }
    RegistryValue value = {REG_NONE, std::vector<BYTE>(256)};
    for (;;) {
        auto size = static_cast<DWORD>(value.bytes.size());
        const LSTATUS error =
            RegQueryValueExW(m_key.get(), name.c_str(), nullptr, &value.type, value.bytes.data(), &size);
        if (error != ERROR_MORE_DATA && !Found(error, L"reading", m_path)) {
            return std::nullopt;
        }
        value.bytes.resize(size);
        if (error == ERROR_SUCCESS) {
            return value;
        }
    }
}

std::wstring RegistryKey::ReadText(const std::wstring& name) const {
    const std::optional<RegistryValue> value = Read(name);
    if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ)) {
        return {};
    }
    std::wstring text(value->bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), value->bytes.data(), text.size() * sizeof(wchar_t));
    text.resize(std::min(text.find(L'\0'), text.size())); // what follows a zero is not part of the text
    return value->type == REG_EXPAND_SZ ? WithVariables(text) : text;
}

DWORD RegistryKey::ReadNumber(const std::wstring& name) const {
    const std::optional<RegistryValue> value = Read(name);
    DWORD number = 0;
    if (value && value->type == REG_DWORD && value->bytes.size() == sizeof(number)) {
        std::memcpy(&number, value->bytes.data(), sizeof(number));
    }
    return number;
}

void RegistryKey::Write(const std::wstring& name, const RegistryValue& value) const {
    Look(RegSetValueExW(m_key.get(), name.c_str(), 0, value.type, value.bytes.data(),
                        static_cast<DWORD>(value.bytes.size())),
         L"writing", m_path);
}

void RegistryKey::Remove(const std::wstring& name) const {
    Found(RegDeleteValueW(m_key.get(), name.c_str()), L"writing", m_path);
}

void RegistryKey::CopyTo(const RegistryKey& destination) const {
    Look(RegCopyTreeW(m_key.get(), nullptr, destination.m_key.get()), L"copying", m_path);
}

void RegistryKey::RemoveContent() const {
    Look(RegDeleteTreeW(m_key.get(), nullptr), L"emptying", m_path);
}

void RemoveKeyIfEmpty(const KeyPlace& place) {
    if (const RegistryKey key = RegistryKey::Open(place); !key || !key.IsEmpty()) {
        return;
    }
    RemoveEmptied(place);
}

void RemoveTree(const KeyPlace& place) {
    if (const RegistryKey key = RegistryKey::Open(place, KEY_READ | KEY_WRITE | DELETE)) {
        key.RemoveContent();
    } else {
        return;
    }
    RemoveEmptied(place);
}

} // namespace kemba::substitute
