// What a text is, by the rules of texts and code pages and without the class under test.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kit {

/// The code pages of the library's own, by their numbers.
inline constexpr std::uint32_t kAnsi = 0;
inline constexpr std::uint32_t kUtf8 = 1208;
inline constexpr std::uint32_t kByteForUnit = 64999;

/// Bytes of a code page as UTF-16 and the other way round; the library's own code pages by their rules, any
/// other one as the system converts it. At most `room` elements, the closing zero included.
std::wstring WideOf(const std::string& bytes, std::uint32_t codePage, std::size_t room = 1 << 20);
std::string NarrowOf(const std::wstring& units, std::uint32_t codePage, std::size_t room = 1 << 20);

/// A text with a body that copies share: which form it has decides on which one its characters are counted.
class TextModel {
  public:
    TextModel() = default;
    static TextModel Narrow(const std::string& bytes, std::uint32_t codePage);
    static TextModel Wide(const std::wstring& units);

    bool IsEmpty() const;
    std::size_t Length() const { return WorksOnWide() ? WideForm().size() : NarrowForm().size(); }
    std::uint32_t CodePage() const { return m_body ? m_body->codePage : kAnsi; }
    const std::string& NarrowForm() const;
    const std::wstring& WideForm() const;

    TextModel InCodePage(std::uint32_t codePage) const;
    TextModel Middle(std::size_t position, std::size_t count) const;
    wchar_t LastCharacter() const;
    std::ptrdiff_t Find(wchar_t character, std::size_t from) const;
    std::ptrdiff_t FindLastOf(const TextModel& set) const;
    int Compare(const TextModel& other) const;

    void Insert(std::size_t position, const TextModel& text);
    void Append(const TextModel& text) { Insert(Length(), text); }
    void ReplaceAll(const TextModel& what, const TextModel& with);
    void TrimRight(const TextModel& set);
    void Delete(std::size_t position, std::size_t count);
    void ToUpper();
    /// Puts a formatted text in its place.
    void Format(const std::wstring& units);

  private:
    struct Body {
        std::string narrow; // a form that is empty is not present
        std::wstring wide;
        std::size_t capacity = 32;
        std::uint32_t codePage = kAnsi;
    };

    bool WorksOnWide() const;
    /// Bytes are taken together only where both are bytes of one code page.
    bool WorksOnWideWith(const TextModel& other) const;
    Body& Own(std::size_t length);
    void Put(const std::string& bytes);
    void Put(const std::wstring& units);

    std::shared_ptr<Body> m_body;
};

} // namespace kit
