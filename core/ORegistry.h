// Registry access by textual paths and aliases.
#pragma once

#include <windows.h>

#include <cstdint>

#include "core/OString.h"

/// Reads and writes registry values named by one text: "ROOT:Key/Key/Value", where ROOT is a root number (0
/// classes, 1 current user, 2 local machine, 3 users) or an alias in any case; a prefix that is neither means
/// root 0.
/// "/" and "\" both separate keys; "//", "::" and "%%" stand for the character itself, as does "%" with two
/// hexadecimal digits, except at the very start of a text.
/// Every operation opens and closes its own key. Nothing is logged or thrown.
class ORegistry {
  public:
    /// Negative results of `ReadValue`; `WriteDword` knows `kFailed` alone.
    enum Result : std::int32_t {
        kFailed = -1,     ///< the registry refused
        kBadPath = -2,    ///< the path holds neither ":" nor "/"
        kKeyNotOpen = -3, ///< the key could not be opened
        kMoreData = -4,   ///< the value holds more bytes than the capacity
    };

    ORegistry();
    /// With a base path, which is put before value paths that name no root of their own.
    explicit ORegistry(OString basePath);
    ORegistry(const ORegistry&) = delete;
    ORegistry& operator=(const ORegistry&) = delete;
    virtual ~ORegistry();

    /// Replaces an alias before the first ":" by its expansion, once.
    virtual void ExpandAlias(OString& path) const;
    /// Opens the key that a path names, for writing if allowed and else for reading; `create` makes a missing
    /// key. The caller closes it with RegCloseKey; null when there is none.
    virtual HKEY OpenKey(const OString& path, bool create) const;

    /// Reads a value of any type: copies at most `capacity` bytes and returns how many bytes the value holds,
    /// or a negative `Result`.
    std::int32_t ReadValue(const OString& valuePath, void* destination, std::uint32_t capacity) const;
    /// Reads a value of any type as zero-terminated UTF-16 of at most 131,070 bytes; `missing` when it
    /// cannot, or when the value holds nothing.
    OString ReadString(const OString& valuePath, const OString& missing) const;
    /// Writes a value, making its key when missing; returns 4, or `kFailed`.
    std::int32_t WriteDword(const OString& valuePath, std::uint32_t value) const;

    /// Splits `keyPath` (base) and `valuePath` into a key path with its alias expanded and a plain value
    /// name, in place; an empty `valuePath` names the default value of the key `keyPath`. False when no
    /// separator is there.
    bool SplitValuePath(OString& keyPath, OString& valuePath) const;
    /// Splits an expanded key path into root and subkey. False without a known root or without a subkey.
    static bool ResolveRoot(const OString& path, HKEY& root, OString& subkey);
    /// Replaces "%" and two digits by the character of that code, except in the very first position, where
    /// decoding stops, by design. A decoded character is looked at again.
    static void DecodePercent(OString& text);

  private:
    OString m_basePath;
    std::uint32_t m_extraAccess = 0; // registry access bits added to every open and create
};
