// Registry keys and values that a test sets up and that are as before at its end.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/kit/Owners.h"
#include "tests/kit/SetAside.h"

namespace kit {

/// A value's type and bytes.
struct RegistryData {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;

    static RegistryData OfBytes(DWORD type, std::vector<BYTE> bytes) { return {type, std::move(bytes)}; }
    static RegistryData OfDword(std::uint32_t value) {
        const auto* const first = reinterpret_cast<const BYTE*>(&value);
        return {REG_DWORD, {first, first + sizeof(value)}};
    }
    /// As REG_SZ, with its terminator.
    static RegistryData OfText(const std::wstring& text) {
        const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
        return {REG_SZ, {first, first + (text.size() + 1) * sizeof(wchar_t)}};
    }
    bool operator==(const RegistryData&) const = default;
};

/// Sets a value below `root`, making its key; `view` is KEY_WOW64_64KEY or KEY_WOW64_32KEY, or none.
inline void SetRegistryData(HKEY root, const std::wstring& key, const std::wstring& name,
                            const RegistryData& data, REGSAM view = 0) {
    const UniqueKey made = MakeKey(root, key, KEY_WRITE | view);
    EXPECT_EQ(RegSetValueExW(made.get(), name.c_str(), 0, data.type, data.bytes.data(),
                             static_cast<DWORD>(data.bytes.size())),
              ERROR_SUCCESS);
}

/// The value below `root`, or nothing.
inline std::optional<RegistryData> GetRegistryData(HKEY root, const std::wstring& key,
                                                   const std::wstring& name) {
    const UniqueKey opened = OpenKey(root, key, KEY_READ);
    RegistryData data;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(opened.get(), name.c_str(), nullptr, &data.type, nullptr, &size);
    if (status == ERROR_SUCCESS) {
        data.bytes.resize(size);
        status = RegQueryValueExW(opened.get(), name.c_str(), nullptr, &data.type, data.bytes.data(), &size);
    }
    data.bytes.resize(size);
    return status == ERROR_SUCCESS ? std::optional(data) : std::nullopt;
}

/// One value in a key that others use too.
class RegistryPlace {
  public:
    RegistryPlace(HKEY root, std::wstring key, std::wstring name)
        : m_root(root), m_key(std::move(key)), m_name(std::move(name)) {}

    void Set(const RegistryData& data) const { SetRegistryData(m_root, m_key, m_name, data); }
    std::optional<RegistryData> Get() const { return GetRegistryData(m_root, m_key, m_name); }
    void Remove() const { RegDeleteKeyValueW(m_root, m_key.c_str(), m_name.c_str()); }
    /// The key stays, as a test at its side may be using it.
    void Put(const std::optional<RegistryData>& data) const { data ? Set(*data) : Remove(); }

  private:
    HKEY m_root;
    std::wstring m_key;
    std::wstring m_name;
};

/// A value that is absent at first.
struct RegistryPreset : SetAside<RegistryPlace> {
    RegistryPreset(HKEY root, std::wstring key, std::wstring name)
        : SetAside(root, std::move(key), std::move(name)) {
        Remove();
    }
};

/// A key of a test's own, absent at first; at the end it goes with all that is in it.
class ScratchKey {
  public:
    ScratchKey(HKEY root, std::wstring path) : m_root(root), m_path(std::move(path)) { Remove(); }
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;
    ~ScratchKey() { Remove(); }

    /// Sets a value of this key, or of a key below it.
    void Set(const std::wstring& name, const RegistryData& data, const std::wstring& below = L"") const {
        SetRegistryData(m_root, Below(below), name, data);
    }
    std::optional<RegistryData> Get(const std::wstring& name, const std::wstring& below = L"") const {
        return GetRegistryData(m_root, Below(below), name);
    }
    bool Exists() const { return OpenKey(m_root, m_path, KEY_READ) != nullptr; }
    const std::wstring& Path() const { return m_path; }

  private:
    std::wstring Below(const std::wstring& path) const {
        return path.empty() ? m_path : m_path + L"\\" + path;
    }
    void Remove() const { RegDeleteTreeW(m_root, m_path.c_str()); }

    HKEY m_root;
    std::wstring m_path;
};

} // namespace kit
