// OString: shared body, lazy conversion, and the character operations on whichever form they work on.
#include "core/OString.h"

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/SystemCalls.h"
#include "core/Utf8.h"

namespace {

using Body = OString::Body;

constexpr std::uint64_t kCapacityStep = 32;
constexpr std::size_t kFormatCharacters = 4096;

UINT EffectiveCodePage(std::uint32_t codePage) {
    return codePage == OCore::kCodePageAnsi ? GetACP() : codePage;
}

bool IsMultiByte(std::uint32_t codePage) {
    switch (EffectiveCodePage(codePage)) {
    case OCore::kCodePageUtf8:
    case 932:
    case 936:
    case 949:
    case 950:
    case 1361:
    case 54936: return true;
    default: return false;
    }
}

/// How many units a form's buffer has.
template<class Unit>
std::size_t UnitsOf(std::uint64_t capacity, std::uint32_t codePage) {
    if constexpr (std::is_same_v<Unit, char>) {
        return capacity * (codePage == OCore::kCodePageUtf8 ? 4 : 2);
    } else {
        return capacity;
    }
}

/// A form counts as present when its buffer exists and its first unit is not zero.
template<class Unit>
bool IsPresent(const std::unique_ptr<Unit[]>& form) {
    return form && form[0] != 0;
}

template<class Unit>
void CopyBounded(std::basic_string_view<Unit> text, Unit* buffer, std::size_t size) {
    buffer[text.copy(buffer, size - 1)] = 0;
}

std::size_t System(UINT codePage, const char* text, wchar_t* to, std::size_t units) {
    return static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text, -1, to, static_cast<int>(units)));
}

std::size_t System(UINT codePage, const wchar_t* text, char* to, std::size_t units) {
    return static_cast<std::size_t>(
        WideCharToMultiByte(codePage, 0, text, -1, to, static_cast<int>(units), nullptr, nullptr));
}

std::size_t Utf8(const char* text, std::span<wchar_t> to) {
    return OCore::DecodeUtf8(text, to);
}

std::size_t Utf8(const wchar_t* text, std::span<char> to) {
    return OCore::EncodeUtf8(text, to);
}

/// Converts a text, whichever way, into a buffer that may hold anything; what does not fit is cut.
template<class From, class To>
void Convert(const From* text, std::uint32_t codePage, To* to, std::size_t units) {
    if (codePage == OCore::kCodePageBytes) {
        std::size_t made = 0;
        for (; text[made] != 0 && made < units - 1; ++made) {
            to[made] = static_cast<To>(static_cast<std::make_unsigned_t<From>>(text[made]));
        }
        to[made] = 0;
    } else if (codePage == OCore::kCodePageUtf8) {
        to[Utf8(text, {to, units - 1})] = 0;
    } else {
        const UINT effective = EffectiveCodePage(codePage);
        std::size_t made = System(effective, text, to, units);
        if (made == 0) { // it failed or ran out of room: what it writes stays, zeroes follow
            std::fill_n(to, units, To{});
            System(effective, text, to, units);
            made = units;
        }
        to[std::min(made, units - 1)] = 0; // a sequence that is cut may swallow the terminator
    }
}

/// Makes the form that is missing. The buffer has the size that the capacity says, the text is what fits.
template<class From, class To>
void Make(Body& body, const std::unique_ptr<From[]>& from, std::unique_ptr<To[]>& to) {
    const std::size_t units = UnitsOf<To>(body.capacity, body.codePage);
    auto made = std::make_unique_for_overwrite<To[]>(units);
    Convert(from.get(), body.codePage, made.get(), units);
    to = std::move(made);
}

void ReleaseBody(Body* body) {
    if (body && body->references.fetch_sub(1) == 1) {
        delete body;
    }
}

std::ptrdiff_t Index(std::size_t position) {
    return position == std::string_view::npos ? OString::kNotFound : static_cast<std::ptrdiff_t>(position);
}

/// Zero for none: a converted form that begins with zero is empty though its text is not.
template<class Unit>
Unit LastOf(std::basic_string_view<Unit> units) {
    return units.empty() ? Unit{} : units.back();
}

template<class Unit>
std::basic_string<Unit> Joined(std::basic_string_view<Unit> first, std::basic_string_view<Unit> second,
                               std::basic_string_view<Unit> third = {}) {
    std::basic_string<Unit> text;
    text.reserve(first.size() + second.size() + third.size());
    return text.append(first).append(second).append(third);
}

template<class Unit>
std::basic_string<Unit> Replaced(std::basic_string_view<Unit> text, std::basic_string_view<Unit> what,
                                 std::basic_string_view<Unit> with) {
    if (what.empty()) { // in this form: it begins with zero
        return std::basic_string<Unit>(text);
    }
    std::basic_string<Unit> result;
    std::size_t done = 0;
    for (auto found = text.find(what); found != text.npos; found = text.find(what, done)) {
        result.append(text.substr(done, found - done)).append(with);
        done = found + what.size();
    }
    return result.append(text.substr(done));
}

} // namespace

template<class Unit>
std::basic_string_view<Unit> OString::Units() const {
    if constexpr (std::is_same_v<Unit, char>) {
        return Narrow();
    } else {
        return Wide();
    }
}

// The constructors delegate, so that what they have made is freed when memory for the rest is short.
OString::OString(const char* text, std::uint32_t codePage) : OString() {
    if (text && *text) {
        m_body = new Body;
        m_body->codePage = codePage;
        Assign(std::string_view(text));
    }
}

OString::OString(const wchar_t* text) : OString() {
    if (text && *text) {
        Assign(std::wstring_view(text));
    }
}

OString::OString(wchar_t character) : OString() {
    if (character != 0) {
        Assign(std::wstring_view(&character, 1));
    }
}

OString::OString(const OString& other) noexcept : m_body(other.m_body) {
    if (m_body) {
        m_body->references.fetch_add(1);
    }
}

OString::OString(OString&& other) noexcept : m_body(std::exchange(other.m_body, nullptr)) {}

OString& OString::operator=(const OString& other) noexcept {
    return *this = OString(other);
}

OString& OString::operator=(OString&& other) noexcept {
    std::swap(m_body, other.m_body);
    return *this;
}

OString::~OString() {
    ReleaseBody(m_body);
}

bool OString::IsEmpty() const {
    return !m_body || !(IsPresent(m_body->narrow) || IsPresent(m_body->wide));
}

std::size_t OString::GetLength() const {
    return WorksOnWide() ? Units<wchar_t>().size() : Units<char>().size();
}

std::uint32_t OString::GetCodePage() const {
    return m_body ? m_body->codePage : OCore::kCodePageAnsi;
}

const char* OString::Narrow() const {
    if (IsEmpty()) {
        return "";
    }
    if (!m_body->narrow) {
        Make(*m_body, m_body->wide, m_body->narrow);
    }
    return m_body->narrow.get();
}

const wchar_t* OString::Wide() const {
    if (IsEmpty()) {
        return L"";
    }
    if (!m_body->wide) {
        Make(*m_body, m_body->narrow, m_body->wide);
    }
    return m_body->wide.get();
}

void OString::MakeBothForms() const {
    Narrow();
    Wide();
}

OString OString::InCodePage(std::uint32_t codePage) const {
    OString text = Wide();
    if (text.m_body) {
        text.m_body->codePage = codePage;
    }
    return text;
}

bool OString::WorksOnWide() const {
    if (!m_body) {
        return false;
    }
    return IsPresent(m_body->narrow) ? IsMultiByte(m_body->codePage) : IsPresent(m_body->wide);
}

bool OString::WorksOnWideWith(const OString& other) const {
    if (WorksOnWide() || other.WorksOnWide()) {
        return true;
    }
    return !IsEmpty() && !other.IsEmpty() &&
           EffectiveCodePage(GetCodePage()) != EffectiveCodePage(other.GetCodePage());
}

void OString::Prepare(std::size_t length) {
    if (!m_body || m_body->references.load() != 1) {
        auto* const own = new Body;
        own->codePage = GetCodePage();
        ReleaseBody(std::exchange(m_body, own));
    }
    if (length + 1 > m_body->capacity) {
        m_body->capacity = (length + kCapacityStep) / kCapacityStep * kCapacityStep;
        m_body->narrow.reset();
        m_body->wide.reset();
    }
}

template<class Unit>
OString& OString::Assign(std::basic_string_view<Unit> text) {
    Prepare(text.size());
    if constexpr (std::is_same_v<Unit, char>) {
        if (!m_body->narrow) {
            m_body->narrow = std::make_unique<char[]>(UnitsOf<char>(m_body->capacity, m_body->codePage));
        }
        m_body->wide.reset();
        CopyBounded(text, m_body->narrow.get(), UnitsOf<char>(m_body->capacity, m_body->codePage));
    } else {
        if (!m_body->wide) {
            m_body->wide = std::make_unique<wchar_t[]>(m_body->capacity);
        }
        m_body->narrow.reset();
        CopyBounded(text, m_body->wide.get(), m_body->capacity);
    }
    return *this;
}

OString& OString::Append(const OString& text) {
    return Insert(GetLength(), text);
}

OString& OString::AppendSlash() {
    return Append(L"/");
}

OString OString::operator+(const OString& text) const {
    return OString(*this).Append(text);
}

template<class Unit>
OString OString::Part(std::size_t position, std::size_t count) const {
    const auto units = Units<Unit>();
    const std::basic_string<Unit> part(units.substr(std::min(position, units.size()), count));
    return OString(*this).Assign<Unit>(part);
}

OString OString::Left(std::size_t length) const {
    return Middle(0, length);
}

OString OString::From(std::size_t position) const {
    return Middle(position, std::string_view::npos);
}

OString OString::Middle(std::size_t position, std::size_t count) const {
    return WorksOnWide() ? Part<wchar_t>(position, count) : Part<char>(position, count);
}

wchar_t OString::LastCharacter() const {
    return WorksOnWide() ? LastOf(Units<wchar_t>()) : static_cast<unsigned char>(LastOf(Units<char>()));
}

std::ptrdiff_t OString::Find(wchar_t character, std::size_t from) const {
    if (character == 0) {
        return kNotFound;
    }
    if (WorksOnWide()) {
        return Index(Units<wchar_t>().find(character, from));
    }
    const wchar_t text[] = {character, 0};
    char byte[8];
    wchar_t back[8];
    Convert(text, GetCodePage(), byte, std::size(byte));
    Convert(byte, GetCodePage(), back, std::size(back));
    // What the code page cannot hold was converted to something else, which is not to be found in its place.
    const bool held = byte[0] != 0 && byte[1] == 0 && back[0] == character;
    return held ? Index(Units<char>().find(byte[0], from)) : kNotFound;
}

std::ptrdiff_t OString::FindLastOf(const OString& set) const {
    return WorksOnWideWith(set) ? Index(Units<wchar_t>().find_last_of(set.Units<wchar_t>()))
                                : Index(Units<char>().find_last_of(set.Units<char>()));
}

OString& OString::ReplaceAll(const OString& what, const OString& with) {
    if (what.IsEmpty()) {
        return *this;
    }
    if (WorksOnWideWith(what) || WorksOnWideWith(with)) {
        return Assign<wchar_t>(Replaced(Units<wchar_t>(), what.Units<wchar_t>(), with.Units<wchar_t>()));
    }
    return Assign<char>(Replaced(Units<char>(), what.Units<char>(), with.Units<char>()));
}

OString& OString::TrimRight(const OString& set) {
    const auto kept = [](auto text, auto trimmed) { return text.find_last_not_of(trimmed) + 1; };
    return *this = WorksOnWideWith(set) ? Part<wchar_t>(0, kept(Units<wchar_t>(), set.Units<wchar_t>()))
                                        : Part<char>(0, kept(Units<char>(), set.Units<char>()));
}

OString& OString::Delete(std::size_t position, std::size_t count) {
    const std::size_t length = GetLength();
    const std::size_t from = std::min(position, length);
    return *this = Left(from).Append(From(from + std::min(count, length - from)));
}

OString& OString::Insert(std::size_t position, const OString& text) {
    if (text.IsEmpty()) {
        return *this;
    }
    if (IsEmpty()) {
        return *this = text;
    }
    const auto inserted = [position](auto units, auto added) {
        const std::size_t at = std::min(position, units.size());
        return Joined(units.substr(0, at), added, units.substr(at));
    };
    return WorksOnWideWith(text) ? Assign<wchar_t>(inserted(Units<wchar_t>(), text.Units<wchar_t>()))
                                 : Assign<char>(inserted(Units<char>(), text.Units<char>()));
}

int OString::Compare(const OString& other) const {
    // Both views order by unsigned code unit: wchar_t is unsigned on Windows, and char compares as bytes do.
    const int order = WorksOnWideWith(other) ? Units<wchar_t>().compare(other.Units<wchar_t>())
                                             : Units<char>().compare(other.Units<char>());
    return (order > 0) - (order < 0);
}

OString& OString::ToUpper() {
    auto* const map = OCore::TheSystemCalls().lcMapString;
    const int needed = map(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, Wide(), -1, nullptr, 0);
    if (needed < 1) {
        return *this;
    }
    std::wstring mapped(static_cast<std::size_t>(needed), L'\0');
    const int written = map(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, Wide(), -1, mapped.data(), needed);
    return written < 1 ? *this : Assign<wchar_t>(mapped.c_str());
}

int OString::Format(const wchar_t* format, ...) {
    std::wstring buffer(kFormatCharacters, L'\0');
    va_list arguments;
    va_start(arguments, format);
    const int count = wvsprintfW(buffer.data(), format, arguments);
    va_end(arguments);
    Prepare(kFormatCharacters);
    Assign<wchar_t>(buffer.c_str());
    return count;
}
