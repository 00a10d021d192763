// The message catalogue: keyed sections of a text resource in the program's own module.
#pragma once

#include <string_view>

#include "core/OString.h"

/// Finds a section of the catalogue by its key. Nothing is cached: every lookup scans the resource afresh.
class TextResource {
  public:
    TextResource() = default;
    TextResource(const TextResource&) = delete;
    TextResource& operator=(const TextResource&) = delete;
    virtual ~TextResource();

    /// The body of the section "#key", compared ignoring case, without its trailing white space. Empty when
    /// the key is empty or has no section, or when the resource cannot be had.
    OString GetText(const OString& key);

  protected:
    /// The lookup itself, in any bytes of the catalogue's format.
    OString FindSection(const char* begin, const char* end, const OString& key);

  private:
    /// Moves past the line of the key's header; false when there is none.
    bool PassHeader(const wchar_t* key, const char* end);
    /// The next line with its line end, or the next piece of a long one; there must be one before `end`.
    std::string_view TakeLine(const char* end);

    const char* m_position = nullptr; // in the locked resource; null when no lookup is under way
};
