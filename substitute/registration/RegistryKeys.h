// Registry keys and values, seen as programs of either word size see them.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/Handles.h"

namespace kemba::substitute {

/// Programs of 64 and of 32 bits have some of the keys apart; where they share one, both views show it.
enum class View : REGSAM { Bits64 = KEY_WOW64_64KEY, Bits32 = KEY_WOW64_32KEY };
inline constexpr View kViews[] = {View::Bits64, View::Bits32};

struct KeyPlace {
    HKEY root; ///< open as long as the place is used
    View view;
    std::wstring path; ///< below the root, without a separator at either end
};

struct RegistryValue {
    DWORD type;
    std::vector<BYTE> bytes;
    bool operator==(const RegistryValue&) const = default;
};

/// A REG_SZ.
RegistryValue TextValue(const std::wstring& text);
/// A REG_DWORD.
RegistryValue NumberValue(DWORD number);

/// A key that is open, or none. All operations throw Failure, which names the key; reading from none finds
/// nothing.
class RegistryKey {
  public:
    /// None if the key is missing.
    static RegistryKey Open(const KeyPlace& place, REGSAM access = KEY_READ);
    /// For reading and writing; makes what is missing on the way.
    static RegistryKey Make(const KeyPlace& place);

    explicit operator bool() const { return m_key != nullptr; }
    bool IsEmpty() const;
    DWORD CountSubkeys() const;

    /// An empty name is the key's own value.
    std::optional<RegistryValue> Read(const std::wstring& name) const;
    /// A value's text, its environment variables filled in if it is of that type; empty if there is no text.
    std::wstring ReadText(const std::wstring& name) const;
    /// A REG_DWORD, or 0.
    DWORD ReadNumber(const std::wstring& name) const;
    void Write(const std::wstring& name, const RegistryValue& value) const;
    /// A missing value is no failure.
    void Remove(const std::wstring& name) const;

    /// Copies all values, with their types, and all below the key.
    void CopyTo(const RegistryKey& destination) const;
    /// Removes all values and all below the key.
    void RemoveContent() const;

  private:
    RegistryKey(HKEY opened, std::wstring path) : m_key(opened), m_path(std::move(path)) {}

    OCore::UniqueKey m_key;
    std::wstring m_path;
};

/// Remove a key unless anything is in it, or with all that is; a missing key is no failure. They throw
/// Failure.
void RemoveKeyIfEmpty(const KeyPlace& place);
void RemoveTree(const KeyPlace& place);

} // namespace kemba::substitute
