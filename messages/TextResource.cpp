// Catalogue lookup.
#include "messages/TextResource.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "core/OString.h"

namespace {

/// Bytes of one line that are read at once, the line end included; a longer line is read in pieces.
constexpr std::size_t kLineBytes = 511;
constexpr int kLineCharacters = 512;

} // namespace

TextResource::~TextResource() = default;

OString TextResource::GetText(const OString& key) {
    if (key.IsEmpty()) {
        return {};
    }
    const OString name = OString(L"kemba") + L"[enu]" + L".txt";
    const HRSRC found = FindResourceW(nullptr, name.Wide(), L"BINARY");
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
    while (ReadLine(line, end)) {
        if (!found) {
            found = OCore::EqualsIgnoreCase(OString(line).TrimRight(L"\r\n").Wide(), header.Wide());
        } else if (line[0] == L'#') {
            break;
        } else {
            body += line;
        }
    }
    m_position = nullptr;
    return OString(body.c_str()).TrimRight(L" \t\r\n");
}

bool TextResource::ReadLine(wchar_t* line, const char* end) {
    if (m_position == end) {
        return false;
    }
    char bytes[kLineBytes + 1];
    std::size_t count = 0;
    while (m_position != end && count < kLineBytes) {
        bytes[count++] = *m_position;
        if (*m_position++ == '\n') {
            break;
        }
    }
    bytes[count] = 0;
    const int made = MultiByteToWideChar(CP_ACP, 0, bytes, -1, line, kLineCharacters);
    line[std::min(made, kLineCharacters - 1)] = 0; // a cut sequence may swallow the terminator
    return true;
}
