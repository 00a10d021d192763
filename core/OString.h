// The support library's text type: 8-bit form, UTF-16 form or both, converted lazily.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace OCore {

/// Code page values with a meaning of the library's own; every other value is a Windows code page.
inline constexpr std::uint32_t kCodePageAnsi = 0;      ///< the system's ANSI code page, asked for at each use
inline constexpr std::uint32_t kCodePageUtf8 = 1208;   ///< UTF-8 by the library's own converter
inline constexpr std::uint32_t kCodePageBytes = 64999; ///< byte for unit: a byte is the unit of its value

/// Folds a to z and nothing else.
constexpr wchar_t FoldCase(wchar_t unit) {
    return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - L'a' + L'A') : unit;
}

/// Compares two zero-terminated texts as whole words with their cases folded.
constexpr bool EqualsIgnoreCase(const wchar_t* left, const wchar_t* right) {
    while (*left != 0 && FoldCase(*left) == FoldCase(*right)) {
        ++left;
        ++right;
    }
    return *left == *right;
}

} // namespace OCore

/// A zero-terminated text whose copies share one reference-counted body.
///
/// Positions and lengths count units of the form that character operations work on: the 8-bit form, unless it
/// is absent or its code page is multi-byte or UTF-8, in which case the UTF-16 form. No operation reports a
/// failure; what a code page cannot hold is converted as the system converts it. Only the reference count is
/// atomic: producing a missing form writes into the shared body.
class OString {
  public:
    /// The text's shared body.
    struct Body {
        std::atomic<std::uint32_t> references{1};
        std::unique_ptr<char[]> narrow;
        std::unique_ptr<wchar_t[]> wide;
        std::uint64_t capacity = 32; // characters, the terminator included
        std::uint32_t codePage = OCore::kCodePageAnsi;
    };

    static constexpr std::ptrdiff_t kNotFound = -1;

    OString() noexcept = default;
    /// From an 8-bit text in the given code page; null counts as empty.
    OString(const char* text, std::uint32_t codePage = OCore::kCodePageAnsi);
    /// From a UTF-16 text; null counts as empty.
    OString(const wchar_t* text);
    /// A one-character text; a zero character makes an empty one.
    explicit OString(wchar_t character);
    OString(const OString& other) noexcept;
    OString(OString&& other) noexcept;
    OString& operator=(const OString& other) noexcept;
    OString& operator=(OString&& other) noexcept;
    ~OString();

    bool IsEmpty() const;
    std::size_t GetLength() const;
    /// The code page of the 8-bit form; the ANSI one while the text has no body.
    std::uint32_t GetCodePage() const;

    /// The 8-bit form, never null; owned by the text and valid until it changes. Once made, it stays.
    const char* Narrow() const;
    /// The UTF-16 form, never null; owned by the text and valid until it changes. Once made, it stays.
    const wchar_t* Wide() const;
    /// For a text that several threads are to read: none of them then converts it.
    void MakeBothForms() const;
    /// The same text tagged with another code page: its UTF-16 form alone, so the 8-bit one is made anew.
    OString InCodePage(std::uint32_t codePage) const;

    OString& Append(const OString& text);
    /// Appends "/".
    OString& AppendSlash();
    OString operator+(const OString& text) const;

    /// The first `length` units, or all of a shorter text.
    OString Left(std::size_t length) const;
    /// Everything from `position` on; empty past the end.
    OString From(std::size_t position) const;
    /// At most `count` units from `position` on.
    OString Middle(std::size_t position, std::size_t count) const;
    /// The last unit (an 8-bit one widened by its value), or 0 for an empty text.
    wchar_t LastCharacter() const;

    /// Index of the first such character at or after `from`, or `kNotFound`.
    std::ptrdiff_t Find(wchar_t character, std::size_t from = 0) const;
    /// Index of the last character that belongs to `set`, or `kNotFound`.
    std::ptrdiff_t FindLastOf(const OString& set) const;
    /// Replaces every occurrence of `what`, left to right; inserted text is not searched again.
    OString& ReplaceAll(const OString& what, const OString& with);
    /// Removes all trailing characters that belong to `set`.
    OString& TrimRight(const OString& set);
    OString& Delete(std::size_t position, std::size_t count);
    /// Inserts before `position`, or at the end when that is past it.
    OString& Insert(std::size_t position, const OString& text);

    /// Ordinal, case-sensitive order by code unit: -1, 0 or 1.
    int Compare(const OString& other) const;
    bool operator==(const OString& other) const { return Compare(other) == 0; }
    bool operator<(const OString& other) const { return Compare(other) < 0; }

    /// Maps to upper case by the user's locale; a text that the system cannot map stays as it is.
    OString& ToUpper();
    /// Replaces the text by one that `wvsprintfW` formats (at most 1024 characters); returns its count.
    int Format(const wchar_t* format, ...);

    /// The shared body, or null; for looking at what is held, not for changing it.
    const Body* GetBody() const { return m_body; }

  private:
    bool WorksOnWide() const;
    bool WorksOnWideWith(const OString& other) const;
    template<class Unit>
    std::basic_string_view<Unit> Units() const;
    template<class Unit>
    OString& Assign(std::basic_string_view<Unit> text);
    template<class Unit>
    OString Part(std::size_t position, std::size_t count) const;
    template<class Unit>
    OString& InsertUnits(std::size_t position, std::basic_string_view<Unit> added);
    template<class Unit>
    OString& Replace(std::basic_string_view<Unit> what, std::basic_string_view<Unit> with);
    /// Makes `length` units, which `write` writes to the place that it is given, the whole text in a body of
    /// its own; what the text holds stays until they are written.
    template<class Unit, class Write>
    OString& Rewrite(std::size_t length, Write write);
    /// Whether a body of this text's own holds this form alone, with room for `length` units.
    template<class Unit>
    bool HoldsAlone(std::size_t length) const;

    Body* m_body = nullptr;
};
