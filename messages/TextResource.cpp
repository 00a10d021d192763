// Catalogue lookup.
#include "messages/TextResource.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

#include "core/OString.h"

namespace {

/// Bytes of one line that are read at once, the line end included; a longer line is read in pieces.
constexpr std::size_t kLineBytes = 511;
constexpr int kLineCharacters = 512;

/// The bytes in the ANSI code page, up to a zero byte, as zero-terminated text.
void Widen(std::string_view bytes, wchar_t (&line)[kLineCharacters]) {
    char terminated[kLineBytes + 1];
    terminated[bytes.copy(terminated, kLineBytes)] = 0;
    const int made = MultiByteToWideChar(CP_ACP, 0, terminated, -1, line, kLineCharacters);
    line[std::min(made, kLineCharacters - 1)] = 0; // a cut sequence may swallow the terminator
}

/// Ends the line before its trailing CR and LF.
const wchar_t* CutLineEnd(wchar_t* line) {
    std::size_t length = std::wcslen(line);
    while (length > 0 && (line[length - 1] == L'\r' || line[length - 1] == L'\n')) {
        line[--length] = 0;
    }
    return line;
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
    const OString header = OString(L"#") + key;
    std::wstring body;
    bool found = false;
    wchar_t line[kLineCharacters];
    m_position = begin;
    while (m_position != end) {
        const std::string_view bytes = TakeLine(end);
        if (!found && bytes.front() != '#') {
            continue; // no header in any code page, and most lines are none: not worth a conversion
        }
        Widen(bytes, line);
        if (!found) {
            found = OCore::EqualsIgnoreCase(CutLineEnd(line), header.Wide());
        } else if (line[0] == L'#') {
            break;
        } else {
            body += line;
        }
    }
    m_position = nullptr;
    return OString(body.c_str()).TrimRight(L" \t\r\n");
}

std::string_view TextResource::TakeLine(const char* end) {
    const std::size_t limit = std::min(kLineBytes, static_cast<std::size_t>(end - m_position));
    const auto* const feed = static_cast<const char*>(std::memchr(m_position, '\n', limit));
    const std::string_view line(m_position, feed ? static_cast<std::size_t>(feed + 1 - m_position) : limit);
    m_position += line.size();
    return line;
}
