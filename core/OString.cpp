// OString: shared body, lazy conversion, and the character operations on whichever form they work on.
#include "core/OString.h"

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
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

/// The smallest capacity that has room for a text and its terminator.
std::uint64_t CapacityFor(std::size_t length) {
    return (length + kCapacityStep) / kCapacityStep * kCapacityStep;
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
std::unique_ptr<Unit[]>& FormOf(Body& body) {
    if constexpr (std::is_same_v<Unit, char>) {
        return body.narrow;
    } else {
        return body.wide;
    }
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
        for (; made < units - 1 && text[made] != 0; ++made) {
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

/// The order of two texts by code unit, a byte by its value: -1, 0 or 1.
template<class Unit>
int Ordered(const Unit* left, const Unit* right) {
    using Value = std::make_unsigned_t<Unit>;
    for (; *left == *right; ++left, ++right) {
        if (*left == 0) {
            return 0;
        }
    }
    return static_cast<Value>(*left) < static_cast<Value>(*right) ? -1 : 1;
}

/// Copies units to a place; returns the place after them.
template<class Unit>
Unit* Put(std::basic_string_view<Unit> units, Unit* to) {
    return to + units.copy(to, units.size());
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
    return GetCodePage() != other.GetCodePage() && !IsEmpty() && !other.IsEmpty() &&
           EffectiveCodePage(GetCodePage()) != EffectiveCodePage(other.GetCodePage());
}

template<class Unit>
bool OString::HoldsAlone(std::size_t length) const {
    return m_body && m_body->references.load() == 1 && m_body->capacity > length && FormOf<Unit>(*m_body) &&
           !(m_body->narrow && m_body->wide);
}

template<class Unit, class Write>
OString& OString::Rewrite(std::size_t length, Write write) {
    const bool own = m_body && m_body->references.load() == 1;
    const std::uint64_t capacity = std::max(CapacityFor(length), own ? m_body->capacity : 0);
    auto form = std::make_unique_for_overwrite<Unit[]>(UnitsOf<Unit>(capacity, GetCodePage()));
    write(form.get());
    form[length] = 0;
    if (!own) {
        auto* const body = new Body;
        body->codePage = GetCodePage();
        ReleaseBody(std::exchange(m_body, body));
    }
    m_body->capacity = capacity;
    m_body->narrow.reset();
    m_body->wide.reset();
    FormOf<Unit>(*m_body) = std::move(form);
    return *this;
}

template<class Unit>
OString& OString::Assign(std::basic_string_view<Unit> text) {
    return Rewrite<Unit>(text.size(), [text](Unit* to) { Put(text, to); });
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
    return OString(*this).Assign<Unit>(units.substr(std::min(position, units.size()), count));
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
    char narrow[8];
    wchar_t back[8];
    Convert(text, GetCodePage(), narrow, std::size(narrow));
    Convert(narrow, GetCodePage(), back, std::size(back));
    // What the code page cannot hold was converted to something else, which is not to be found in its place.
    const bool held = narrow[0] != 0 && narrow[1] == 0 && back[0] == character;
    return held ? Index(Units<char>().find(narrow[0], from)) : kNotFound;
}

std::ptrdiff_t OString::FindLastOf(const OString& set) const {
    return WorksOnWideWith(set) ? Index(Units<wchar_t>().find_last_of(set.Units<wchar_t>()))
                                : Index(Units<char>().find_last_of(set.Units<char>()));
}

template<class Unit>
OString& OString::Replace(std::basic_string_view<Unit> what, std::basic_string_view<Unit> with) {
    std::basic_string_view<Unit> text = Units<Unit>();
    std::size_t count = 0;
    if (!what.empty()) { // it is, in this form, if it begins with zero
        for (auto at = text.find(what); at != text.npos; at = text.find(what, at + what.size())) {
            ++count;
        }
    }
    if (count == 0 && HoldsAlone<Unit>(text.size())) {
        return *this; // the same would be written
    }
    return Rewrite<Unit>(text.size() - count * what.size() + count * with.size(), [&](Unit* to) {
        for (; count > 0; --count) {
            const std::size_t at = text.find(what);
            to = Put(with, Put(text.substr(0, at), to));
            text.remove_prefix(at + what.size());
        }
        Put(text, to);
    });
}

OString& OString::ReplaceAll(const OString& what, const OString& with) {
    if (what.IsEmpty()) {
        return *this;
    }
    return WorksOnWideWith(what) || WorksOnWideWith(with)
               ? Replace<wchar_t>(what.Units<wchar_t>(), with.Units<wchar_t>())
               : Replace<char>(what.Units<char>(), with.Units<char>());
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

template<class Unit>
OString& OString::InsertUnits(std::size_t position, std::basic_string_view<Unit> added) {
    const auto units = Units<Unit>();
    const std::size_t at = std::min(position, units.size());
    return Rewrite<Unit>(units.size() + added.size(),
                         [=](Unit* to) { Put(units.substr(at), Put(added, Put(units.substr(0, at), to))); });
}

OString& OString::Insert(std::size_t position, const OString& text) {
    if (text.IsEmpty()) {
        return *this;
    }
    if (IsEmpty()) {
        return *this = text;
    }
    return WorksOnWideWith(text) ? InsertUnits(position, text.Units<wchar_t>())
                                 : InsertUnits(position, text.Units<char>());
}

int OString::Compare(const OString& other) const {
    return WorksOnWideWith(other) ? Ordered(Wide(), other.Wide()) : Ordered(Narrow(), other.Narrow());
}

OString& OString::ToUpper() {
    auto* const map = OCore::TheSystemCalls().lcMapString;
    const int needed = map(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, Wide(), -1, nullptr, 0);
    if (needed < 1) {
        return *this;
    }
    const auto mapped = std::make_unique<wchar_t[]>(static_cast<std::size_t>(needed) + 1);
    const int written = map(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, Wide(), -1, mapped.get(), needed);
    return written < 1 ? *this : Assign<wchar_t>(mapped.get());
}

int OString::Format(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int count = 0;
    Rewrite<wchar_t>(kFormatCharacters, [&](wchar_t* to) {
        std::fill_n(to, kFormatCharacters, L'\0'); // a text that is cut has no terminator of its own
        count = wvsprintfW(to, format, arguments);
    });
    va_end(arguments);
    return count;
}
