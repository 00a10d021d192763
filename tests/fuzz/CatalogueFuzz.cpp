// Lookups in catalogues of any bytes.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "core/OString.h"
#include "messages/TextResource.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/fuzz/TextModel.h"

using namespace kit;

namespace {

struct Lookup : TextResource {
    using TextResource::FindSection;
};

constexpr std::size_t kPiece = 511;

/// The lines, each with its end; one of more than 511 bytes in pieces.
std::vector<std::string> PiecesOf(const std::string& catalogue) {
    std::vector<std::string> pieces;
    bool whole = true;
    for (const char byte : catalogue) {
        if (whole) {
            pieces.emplace_back();
        }
        pieces.back() += byte;
        whole = byte == '\n' || pieces.back().size() == kPiece;
    }
    return pieces;
}

std::wstring Folded(std::wstring text) {
    for (wchar_t& unit : text) {
        unit = unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    }
    return text;
}

std::wstring WithoutEnd(std::wstring text, const std::wstring& trimmed) {
    while (!text.empty() && trimmed.find(text.back()) != trimmed.npos) {
        text.pop_back();
    }
    return text;
}

/// The section's body by the rules; a zero byte ends a line's text.
std::wstring SectionOf(const std::string& catalogue, const std::wstring& key) {
    const OrdinaryHeap ordinary;
    std::vector<std::wstring> lines;
    for (const std::string& piece : PiecesOf(catalogue)) {
        lines.push_back(WideOf(piece.substr(0, piece.find('\0')), kAnsi));
    }
    auto line = std::find_if(lines.begin(), lines.end(), [&](const std::wstring& candidate) {
        return Folded(WithoutEnd(candidate, L"\r\n")) == Folded(L"#" + key);
    });
    std::wstring body;
    while (line != lines.end() && ++line != lines.end() && (line->empty() || line->front() != L'#')) {
        body += *line;
    }
    return WithoutEnd(body, L" \t\r\n");
}

/// A key in any case, most of them one of a few.
std::string DrawKey(Case& input) {
    constexpr const char* kKeys[] = {"a", "help:a", "error:COM", "error:COM_Source", "text:Unknown", ""};
    std::string key = input.OnceIn(8) ? input.Text(20) : input.OneOf(kKeys);
    for (char& letter : key) {
        const bool isLetter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
        letter = static_cast<char>(isLetter && input.OnceIn(3) ? letter ^ 0x20 : letter);
    }
    return key;
}

std::string DrawLine(Case& input) {
    const OrdinaryHeap ordinary;
    constexpr const char* kEnds[] = {"\r\n", "\r\n", "\n", "\r", "", "\r\r\n", " \r\n", "\t\r\n"};
    std::string line;
    switch (input.Below(8)) {
    case 0:
    case 1: line = "#" + DrawKey(input); break;
    case 2: line = std::string(509 + input.Below(6), 'x'); break; // the end in or behind the piece
    case 3:
        line = std::string(505 + input.Below(8), 'y') + "#" + DrawKey(input);
        break;                                                    // perhaps a header at its end
    case 4: line = std::string(510, 'z') + input.Bytes(4); break; // perhaps half a character
    case 5: line = input.Bytes(60); break;                        // zeros among them
    default: line = input.Text(100); break;
    }
    return line + input.OneOf(kEnds);
}

FUZZ_TARGET(Catalogues, 1500) {
    std::string catalogue;
    for (std::size_t left = input.Below(12); left > 0; --left) {
        catalogue += DrawLine(input);
    }
    // To the byte, so that the end is the end of the block.
    const std::vector<char> bytes(catalogue.begin(), catalogue.end());
    for (int look = 0; look < 2; ++look) {
        const std::string key = DrawKey(input);
        input.Say([&] { return "Lookup()(" + Literal(catalogue) + "s, " + Literal(key) + ");"; });
        const OString found = Lookup().FindSection(bytes.data(), bytes.data() + bytes.size(), key.c_str());
        EXPECT_EQ(found.Wide(), SectionOf(catalogue, WideOf(key, kAnsi)));
    }
}

} // namespace
