// The model of texts.
#include "tests/fuzz/TextModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/fuzz/Utf8Model.h"

namespace kit {
namespace {

std::uint32_t Effective(std::uint32_t codePage) {
    return codePage == kAnsi ? GetACP() : codePage;
}

bool IsMultiByte(std::uint32_t codePage) {
    constexpr std::uint32_t kMultiByte[] = {932, 936, 949, 950, 1361, 54936, kUtf8};
    return std::count(std::begin(kMultiByte), std::end(kMultiByte), Effective(codePage)) != 0;
}

/// Up to the first zero, and one element less than there is room for.
template<class Text>
Text Bounded(const Text& text, std::size_t room) {
    return Text(text, 0, std::min(text.find(typename Text::value_type(0)), room - 1));
}

template<class Text>
std::size_t FirstOf(const Text& text, const Text& what, std::size_t from) {
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), what.begin(), what.end());
    return static_cast<std::size_t>(found - text.begin());
}

template<class Text>
Text WithAllReplaced(Text text, const Text& what, const Text& with) {
    std::size_t at = what.empty() ? text.size() : FirstOf(text, what, 0);
    while (at < text.size()) {
        text = text.substr(0, at) + with + text.substr(at + what.size());
        at = FirstOf(text, what, at + with.size());
    }
    return text;
}

template<class Text>
std::ptrdiff_t LastOf(const Text& text, const Text& set) {
    for (std::size_t at = text.size(); at > 0; --at) {
        if (std::count(set.begin(), set.end(), text[at - 1]) != 0) {
            return static_cast<std::ptrdiff_t>(at - 1);
        }
    }
    return -1;
}

template<class Text>
Text Trimmed(Text text, const Text& set) {
    while (!text.empty() && std::count(set.begin(), set.end(), text.back()) != 0) {
        text.pop_back();
    }
    return text;
}

template<class Text>
Text Part(const Text& text, std::size_t position, std::size_t count) {
    const std::size_t from = std::min(position, text.size());
    return text.substr(from, std::min(count, text.size() - from));
}

template<class Text>
Text Inserted(const Text& text, std::size_t position, const Text& added) {
    const std::size_t at = std::min(position, text.size());
    return text.substr(0, at) + added + text.substr(at);
}

template<class Text>
int Order(const Text& left, const Text& right) {
    for (std::size_t at = 0; at < std::min(left.size(), right.size()); ++at) {
        const auto unit = [at](const Text& text) {
            return static_cast<std::uint16_t>(text[at] & (sizeof(text[at]) == 1 ? 0xFF : 0xFFFF));
        };
        if (unit(left) != unit(right)) {
            return unit(left) < unit(right) ? -1 : 1;
        }
    }
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

} // namespace

std::wstring WideOf(const std::string& bytes, std::uint32_t codePage, std::size_t room) {
    std::wstring units;
    if (codePage == kByteForUnit) {
        for (const char byte : bytes) {
            units += static_cast<unsigned char>(byte);
        }
    } else if (codePage == kUtf8) {
        const std::u16string decoded = DecodedByModel(bytes);
        units.assign(decoded.begin(), decoded.end());
    } else if (!bytes.empty()) {
        units.resize(std::min(room, 4 * bytes.size() + 4));
        MultiByteToWideChar(Effective(codePage), 0, bytes.c_str(), -1, units.data(),
                            static_cast<int>(units.size()));
    }
    return Bounded(units, room);
}

std::string NarrowOf(const std::wstring& units, std::uint32_t codePage, std::size_t room) {
    std::string bytes;
    if (codePage == kByteForUnit) {
        for (const wchar_t unit : units) {
            bytes += static_cast<char>(unit % 256);
        }
    } else if (codePage == kUtf8) {
        bytes = EncodedByModel(std::u16string(units.begin(), units.end()));
    } else if (!units.empty()) {
        bytes.resize(std::min(room, 8 * units.size() + 8));
        WideCharToMultiByte(Effective(codePage), 0, units.c_str(), -1, bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    }
    return Bounded(bytes, room);
}

TextModel TextModel::Narrow(const std::string& bytes, std::uint32_t codePage) {
    TextModel text;
    if (!bytes.empty()) {
        text.m_body = std::make_shared<Body>();
        text.m_body->codePage = codePage;
        text.Put(bytes);
    }
    return text;
}

TextModel TextModel::Wide(const std::wstring& units) {
    TextModel text;
    if (!units.empty()) {
        text.Put(units);
    }
    return text;
}

bool TextModel::IsEmpty() const {
    return !m_body || (m_body->narrow.empty() && m_body->wide.empty());
}

const std::string& TextModel::NarrowForm() const {
    static const std::string kEmpty;
    if (IsEmpty()) {
        return kEmpty;
    }
    if (m_body->narrow.empty()) {
        const std::size_t room = m_body->capacity * (m_body->codePage == kUtf8 ? 4 : 2);
        m_body->narrow = NarrowOf(m_body->wide, m_body->codePage, room);
    }
    return m_body->narrow;
}

const std::wstring& TextModel::WideForm() const {
    static const std::wstring kEmpty;
    if (IsEmpty()) {
        return kEmpty;
    }
    if (m_body->wide.empty()) {
        m_body->wide = WideOf(m_body->narrow, m_body->codePage, m_body->capacity);
    }
    return m_body->wide;
}

TextModel TextModel::InCodePage(std::uint32_t codePage) const {
    TextModel text = Wide(WideForm());
    if (text.m_body) {
        text.m_body->codePage = codePage;
    }
    return text;
}

TextModel TextModel::Middle(std::size_t position, std::size_t count) const {
    TextModel part = *this;
    if (WorksOnWide()) {
        part.Put(Part(WideForm(), position, count));
    } else {
        part.Put(Part(NarrowForm(), position, count));
    }
    return part;
}

wchar_t TextModel::LastCharacter() const {
    const std::wstring units = WorksOnWide() ? WideForm() : WideOf(NarrowForm(), kByteForUnit);
    return units.empty() ? L'\0' : units.back();
}

std::ptrdiff_t TextModel::Find(wchar_t character, std::size_t from) const {
    if (character == 0) {
        return -1;
    }
    if (!WorksOnWide()) {
        // Among bytes the character is to be one byte that means just it.
        const std::string& bytes = NarrowForm();
        const std::string byte = NarrowOf(std::wstring(1, character), CodePage());
        const bool isThat = byte.size() == 1 && WideOf(byte, CodePage()) == std::wstring(1, character);
        for (std::size_t at = from; isThat && at < bytes.size(); ++at) {
            if (bytes[at] == byte[0]) {
                return static_cast<std::ptrdiff_t>(at);
            }
        }
        return -1;
    }
    const std::wstring& units = WideForm();
    for (std::size_t at = from; at < units.size(); ++at) {
        if (units[at] == character) {
            return static_cast<std::ptrdiff_t>(at);
        }
    }
    return -1;
}

std::ptrdiff_t TextModel::FindLastOf(const TextModel& set) const {
    return WorksOnWideWith(set) ? LastOf(WideForm(), set.WideForm()) : LastOf(NarrowForm(), set.NarrowForm());
}

int TextModel::Compare(const TextModel& other) const {
    return WorksOnWideWith(other) ? Order(WideForm(), other.WideForm())
                                  : Order(NarrowForm(), other.NarrowForm());
}

void TextModel::Insert(std::size_t position, const TextModel& text) {
    if (text.IsEmpty()) {
        return;
    }
    if (IsEmpty()) {
        *this = text;
    } else if (WorksOnWideWith(text)) {
        Put(Inserted(WideForm(), position, text.WideForm()));
    } else {
        Put(Inserted(NarrowForm(), position, text.NarrowForm()));
    }
}

void TextModel::ReplaceAll(const TextModel& what, const TextModel& with) {
    if (what.IsEmpty()) {
        return;
    }
    if (WorksOnWideWith(what) || WorksOnWideWith(with)) {
        Put(WithAllReplaced(WideForm(), what.WideForm(), with.WideForm()));
    } else {
        Put(WithAllReplaced(NarrowForm(), what.NarrowForm(), with.NarrowForm()));
    }
}

void TextModel::TrimRight(const TextModel& set) {
    TextModel trimmed = *this; // a part of it, and so with a body of its own
    if (WorksOnWideWith(set)) {
        trimmed.Put(Trimmed(WideForm(), set.WideForm()));
    } else {
        trimmed.Put(Trimmed(NarrowForm(), set.NarrowForm()));
    }
    *this = trimmed;
}

void TextModel::Delete(std::size_t position, std::size_t count) {
    const std::size_t from = std::min(position, Length());
    const std::size_t behind = from + std::min(count, Length() - from);
    TextModel left = Middle(0, from);
    left.Append(Middle(behind, Length()));
    *this = left;
}

void TextModel::ToUpper() {
    const std::wstring units = WideForm();
    std::wstring upper(units.size() * 2 + 2, L'\0');
    const int size = static_cast<int>(upper.size());
    if (LCMapStringW(0x400, 0x200, units.c_str(), -1, upper.data(), size) > 0) {
        Put(upper.substr(0, upper.find(L'\0')));
    }
}

void TextModel::Format(const std::wstring& units) {
    Own(4096);
    Put(units);
}

bool TextModel::WorksOnWide() const {
    if (!m_body) {
        return false;
    }
    return m_body->narrow.empty() ? !m_body->wide.empty() : IsMultiByte(m_body->codePage);
}

bool TextModel::WorksOnWideWith(const TextModel& other) const {
    return WorksOnWide() || other.WorksOnWide() ||
           (!IsEmpty() && !other.IsEmpty() && Effective(CodePage()) != Effective(other.CodePage()));
}

TextModel::Body& TextModel::Own(std::size_t length) {
    if (!m_body || m_body.use_count() != 1) {
        const std::uint32_t codePage = CodePage();
        m_body = std::make_shared<Body>();
        m_body->codePage = codePage;
    }
    if (length + 1 > m_body->capacity) {
        m_body->capacity = (length + 32) / 32 * 32;
    }
    return *m_body;
}

void TextModel::Put(const std::string& bytes) {
    const std::string copy = bytes; // perhaps of this very body
    Body& body = Own(copy.size());
    body.narrow = copy;
    body.wide.clear();
}

void TextModel::Put(const std::wstring& units) {
    const std::wstring copy = units;
    Body& body = Own(copy.size());
    body.wide = copy;
    body.narrow.clear();
}

} // namespace kit
