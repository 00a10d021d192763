// Catalogue lookup.
#include "messages/TextResource.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string>
#include <string_view>

#include "core/OString.h"

namespace {

/// Bytes of one line that are read at once, the line end included; a longer line is read in pieces.
constexpr std::size_t kLineBytes = 511;
constexpr int kLineCharacters = 512;

/// The first such byte in the range, or `end`; eight bytes at a time, for every message looks for its
/// section.
const char* FindByte(const char* begin, const char* end, char byte) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kTops = 0x8080808080808080;
    const std::uint64_t wanted = kOnes * static_cast<unsigned char>(byte);
    while (end - begin >= 8) {
        std::uint64_t eight;
        std::memcpy(&eight, begin, 8);
        const std::uint64_t zeroWhereEqual = eight ^ wanted;
        // The lowest top bit that this leaves is that of the first zero byte.
        if (const std::uint64_t found = (zeroWhereEqual - kOnes) & ~zeroWhereEqual & kTops) {
            return begin + std::countr_zero(found) / 8;
        }
        begin += 8;
    }
    return std::find(begin, end, byte);
}

/// The first line, or piece of a long one, that begins with "#", or `end`. One must begin at `begin`.
const char* FindHash(const char* begin, const char* end) {
    const char* line = begin;
    const char* seen = begin; // no line begins between this one's begin and here
    for (const char* hash = begin; (hash = FindByte(hash, end, '#')) != end; ++hash) {
        const char* const next =
            std::find(std::reverse_iterator(hash), std::reverse_iterator(seen), '\n').base();
        line = next == seen ? line : next;
        seen = hash;
        if (static_cast<std::size_t>(hash - line) % kLineBytes == 0) {
            return hash;
        }
    }
    return end;
}

/// The bytes in the ANSI code page, up to a zero byte, as zero-terminated text.
void Widen(std::string_view bytes, wchar_t (&line)[kLineCharacters]) {
    char terminated[kLineBytes + 1];
    terminated[bytes.copy(terminated, kLineBytes)] = 0;
    const int made = MultiByteToWideChar(CP_ACP, 0, terminated, -1, line, kLineCharacters);
    line[std::min(made, kLineCharacters - 1)] = 0; // a cut sequence may swallow the terminator
}

/// Whether a header's line, behind its "#" and without its trailing CR and LF, is the key, ignoring case.
bool Equals(std::string_view bytes, const wchar_t* key) {
    // In every code page ASCII stands for itself, which tells nearly all headers apart without a conversion.
    for (std::size_t at = 0; at < bytes.size() && bytes[at] > 0 && key[at] != 0; ++at) {
        if (OCore::FoldCase(static_cast<wchar_t>(bytes[at])) != OCore::FoldCase(key[at])) {
            return false;
        }
    }
    wchar_t line[kLineCharacters];
    Widen(bytes, line);
    std::size_t length = std::wcslen(line);
    while (length > 0 && (line[length - 1] == L'\r' || line[length - 1] == L'\n')) {
        line[--length] = 0;
    }
    return OCore::EqualsIgnoreCase(line, key);
}

} // namespace

TextResource::~TextResource() = default;

OString TextResource::GetText(const OString& key) {
    if (key.IsEmpty()) {
        return {};
    }
    const HRSRC found = FindResourceW(nullptr, L"kemba[enu].txt", L"BINARY");
    const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
    const auto* const bytes = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    return bytes ? FindSection(bytes, bytes + SizeofResource(nullptr, found), key) : OString();
}

OString TextResource::FindSection(const char* begin, const char* end, const OString& key) {
    std::wstring body;
    m_position = begin;
    if (PassHeader(key.Wide(), end)) {
        wchar_t line[kLineCharacters];
        while (m_position != end) {
            Widen(TakeLine(end), line);
            if (line[0] == L'#') {
                break;
            }
            body += line;
        }
    }
    m_position = nullptr;
    body.erase(body.find_last_not_of(L" \t\r\n") + 1);
    return OString(body.c_str());
}

bool TextResource::PassHeader(const wchar_t* key, const char* end) {
    while ((m_position = FindHash(m_position, end)) != end) {
        if (Equals(TakeLine(end).substr(1), key)) {
            return true;
        }
    }
    return false;
}

std::string_view TextResource::TakeLine(const char* end) {
    const std::size_t limit = std::min(kLineBytes, static_cast<std::size_t>(end - m_position));
    const char* const feed = FindByte(m_position, m_position + limit, '\n');
    const std::string_view line(m_position, feed == m_position + limit ? feed : feed + 1);
    m_position += line.size();
    return line;
}
