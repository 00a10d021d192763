// Texts of action profiles, read once more by the rules of the page that describes them.
#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "substitute/actions/ActionProfile.h"
#include "substitute/base/Failure.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

using Profile = std::map<LONG, std::string>;

constexpr const char* kControls[] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL",
                                     "BS",  "HT",  "LF",  "VT",  "FF",  "CR",  "SO",  "SI",
                                     "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB",
                                     "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

const std::map<std::string, LONG>& TheActions() {
    static const auto actions = [] {
        const OrdinaryHeap ordinary;
        return std::map<std::string, LONG>{
            {"test", 1},  {"blank", 2},           {"cut", 3},       {"feed", 4},
            {"reset", 7}, {"factorydefaults", 8}, {"calibrate", 9}, {"printconfiguration", 10}};
    }();
    return actions;
}

/// A profile that is not understood, and the line that is to blame.
struct Refused {
    std::size_t line;
};

/// A line cut up: whether it is indented, and its items. An item is a text in quotes, "=", or a word.
struct Line {
    bool indented = false;
    std::vector<std::string> items;
    bool spaced = true; // every item of bytes is followed by a blank, a comment or the end
};

bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}

Line CutUp(const std::string& text) {
    Line line;
    line.indented = !text.empty() && IsBlank(text[0]);
    bool equalsSeen = line.indented;
    for (std::size_t at = 0; at < text.size() && text[at] != '#';) {
        if (IsBlank(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at + 1;
        const bool isEquals = text[at] == '=' && !equalsSeen && line.items.size() == 1;
        if (text[at] == '"' && equalsSeen) {
            end = text.find('"', at + 1);
            end = end == text.npos ? text.size() : end + 1;
        } else if (!isEquals) {
            end = std::min(text.find_first_of(" \t\"#=", at + 1), text.size());
        }
        line.items.push_back(text.substr(at, end - at));
        line.spaced =
            line.spaced && (!equalsSeen || end == text.size() || IsBlank(text[end]) || text[end] == '#');
        equalsSeen = equalsSeen || isEquals;
        at = end;
    }
    return line;
}

std::optional<std::string> BytesOf(const std::string& item) {
    const auto isHex = [](char digit) {
        return std::string("0123456789ABCDEFabcdef").find(digit) != std::string::npos;
    };
    if (item.front() == '"') {
        const bool closed = item.size() > 1 && item.back() == '"';
        const std::string text = closed ? item.substr(1, item.size() - 2) : std::string("\n");
        const bool plain = std::all_of(text.begin(), text.end(),
                                       [](char letter) { return letter >= 0x20 && letter < 0x7F; });
        return plain ? std::optional(text) : std::nullopt;
    }
    if (item.size() == 4 && item.substr(0, 2) == "0x" && isHex(item[2]) && isHex(item[3])) {
        return std::string(1, static_cast<char>(std::stoi(item.substr(2), nullptr, 16)));
    }
    const auto* const name = std::find(std::begin(kControls), std::end(kControls), item);
    return name == std::end(kControls) ? std::nullopt
                                       : std::optional(std::string(1, static_cast<char>(name - kControls)));
}

Profile Expected(std::string text) {
    const OrdinaryHeap ordinary;
    if (text.rfind("\xEF\xBB\xBF", 0) == 0) {
        text.erase(0, 3);
    }
    Profile profile;
    std::string* bytes = nullptr;
    std::size_t begun = 0;
    std::size_t number = 0;
    const auto refuseEmpty = [&] {
        if (bytes && bytes->empty()) {
            throw Refused{begun};
        }
    };
    for (std::size_t at = 0; at < text.size();) {
        ++number;
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string raw = text.substr(at, end - at);
        at = end + 1;
        if (!raw.empty() && raw.back() == '\r') {
            raw.pop_back();
        }
        const Line line = CutUp(raw);
        if (line.items.empty()) {
            continue;
        }
        std::size_t first = 0;
        if (!line.indented) {
            refuseEmpty();
            std::string word = line.items[0];
            std::transform(word.begin(), word.end(), word.begin(), [](char letter) {
                return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
            });
            const auto action = TheActions().find(word);
            if (action == TheActions().end() || line.items.size() < 2 || line.items[1] != "=" ||
                profile.count(action->second) != 0) {
                throw Refused{number};
            }
            bytes = &profile[action->second];
            begun = number;
            first = 2;
        } else if (!bytes) {
            throw Refused{number};
        }
        for (std::size_t index = first; index < line.items.size(); ++index) {
            const std::optional<std::string> item = BytesOf(line.items[index]);
            if (!item || !line.spaced) {
                throw Refused{number};
            }
            *bytes += *item;
        }
    }
    refuseEmpty();
    return profile;
}

std::string DrawItem(Case& input) {
    switch (input.Below(12)) {
    case 0: return "0x" + input.Text(3);
    case 1:
    case 2: {
        constexpr std::string_view kDigits = "0123456789ABCDEFabcdef";
        return {'0', 'x', input.OneOf(kDigits), input.OneOf(kDigits)};
    }
    case 3: return "\"" + input.Text(6) + (input.OnceIn(8) ? "" : "\"");
    case 4:
    case 5: {
        std::string text(input.Below(9), 'a');
        for (char& letter : text) {
            letter = static_cast<char>('#' + input.Below(0x5C));
        }
        return "\"" + text + "\"";
    }
    case 6: return input.OnceIn(4) ? input.Text(4) : "ESC";
    default: return input.OneOf(kControls);
    }
}

std::string DrawText(Case& input) {
    const OrdinaryHeap ordinary;
    constexpr const char* kBlanks[] = {" ", " ", " ", "  ", "\t", ""};
    constexpr const char* kEnds[] = {"\n", "\n", "\r\n", "\r\r\n", "\r"};
    constexpr const char* kIndents[] = {"    ", " ", "\t"};
    std::string text = input.OnceIn(12) ? "\xEF\xBB\xBF" : "";
    std::vector<std::string> words;
    for (const auto& [word, code] : TheActions()) {
        words.push_back(word);
    }
    for (std::size_t left = input.Below(8); left > 0; --left) {
        const std::size_t kind = input.Below(8);
        if (kind < 5 && !words.empty()) {
            const std::size_t which = input.Below(words.size());
            std::string word = words[which];
            if (!input.OnceIn(10)) {
                words.erase(words.begin() + static_cast<std::ptrdiff_t>(which));
            }
            word[0] = static_cast<char>(word[0] ^ (input.OnceIn(2) ? 0x20 : 0));
            text += word + input.OneOf(kBlanks) + (input.OnceIn(20) ? "" : "=") + input.OneOf(kBlanks);
        } else if (kind < 6) {
            text += input.OneOf(kIndents);
        } else if (kind == 7 && input.OnceIn(3)) {
            text += input.Text(30);
        }
        for (std::size_t items = kind < 6 ? 1 + input.Below(5) : 0; items > 0; --items) {
            text += DrawItem(input) + (input.OnceIn(16) ? "" : " ");
        }
        text += input.OnceIn(4) ? "# " + input.Text(20) : "";
        text += input.OneOf(kEnds);
    }
    for (std::size_t left = input.OnceIn(4) ? input.Below(3) : 0; left > 0 && !text.empty(); --left) {
        text[input.Below(text.size())] = static_cast<char>(input.Bits());
    }
    return text;
}

FUZZ_TARGET(ActionProfiles, 8000) {
    const std::string text = DrawText(input);
    input.Say([&] { return "ParseActionProfile(" + Literal(text) + "s, L\"p\");"; });
    Profile expected;
    std::size_t refused = 0;
    try {
        expected = Expected(text);
    } catch (const Refused& refusal) {
        refused = refusal.line;
    }
    const std::vector<char> exact(text.begin(), text.end());
    try {
        EXPECT_EQ(kemba::substitute::ParseActionProfile({exact.data(), exact.size()}, L"p"), expected);
        EXPECT_EQ(refused, 0U) << "the line that was to be refused";
    } catch (const kemba::substitute::Failure& failure) {
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
        EXPECT_EQ(failure.reason.find(L"line " + std::to_wstring(refused) + L":"),
                  std::wstring(L"action profile \"p\", ").size());
    }
}

/// The folder that the value's text names: an absolute path without zeros but at its end. Anything else is
/// refused.
std::optional<std::wstring> ExpectedFolder(const std::wstring& text) {
    const OrdinaryHeap ordinary;
    const std::wstring folder = text.substr(0, text.find_last_not_of(L'\0') + 1);
    std::wstring plain = folder;
    std::replace(plain.begin(), plain.end(), L'/', L'\\');
    const bool absolute =
        plain.rfind(L"\\\\", 0) == 0 || plain.substr(std::min<std::size_t>(plain.size(), 1), 2) == L":\\";
    return absolute && folder.find(L'\0') == folder.npos ? std::optional(folder) : std::nullopt;
}

FUZZ_TARGET(ProfileFolders, 60) {
    if (input.Number() % 16 != 0 && input.Number() > 1000) {
        return; // the registry itself is slow
    }
    constexpr const wchar_t* kPieces[] = {L"C:", L"\\", L"\\\\", L"/", L"profiles", L"a b", L"\x00E9"};
    std::wstring text = input.OnceIn(3) ? L"" : L"Q:\\";
    for (std::size_t left = input.Below(5); left > 0; --left) {
        text += input.OneOf(kPieces);
    }
    for (std::size_t left = input.OnceIn(6) ? 1 : 0; left > 0; --left) {
        text.insert(input.Below(text.size() + 1), 1, L'\0');
    }
    text += std::wstring(input.Below(3), L'\0');
    const DWORD type = input.OnceIn(6) ? static_cast<DWORD>(input.Below(12)) : REG_SZ;
    const ScratchKey key(HKEY_CURRENT_USER,
                         L"Software\\kemba fuzz profiles " + std::to_wstring(GetCurrentProcessId()));
    input.Say([&] { return "the value's text: " + Literal(text) + ", type " + std::to_string(type); });
    EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key.Path().c_str(), L"ActionProfiles", type, text.data(),
                              static_cast<DWORD>(text.size() * sizeof(wchar_t))),
              ERROR_SUCCESS);
    const std::optional<std::wstring> expected = type == REG_SZ ? ExpectedFolder(text) : std::nullopt;
    std::optional<std::wstring> found;
    try {
        found = kemba::substitute::ActionProfileFolder(HKEY_CURRENT_USER, key.Path().c_str());
    } catch (const kemba::substitute::Failure& failure) {
        EXPECT_LT(failure.status, 0);
    }
    if (type != REG_EXPAND_SZ) { // whose variables are the system's affair
        EXPECT_EQ(found, expected);
    }
}

} // namespace
