// Paths of the registry: split, expanded, resolved and decoded; every so many cases a real value is written
// and read.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ORegistry.h"
#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/RegistryPreset.h"

using namespace kit;

namespace {

const std::map<std::wstring, std::wstring>& TheAliases() {
    static const auto aliases = [] {
        const OrdinaryHeap ordinary;
        const std::wstring drivers = L"SOFTWARE/Brandle/Drivers";
        const std::wstring print = L"2:SYSTEM/CurrentControlSet/Control/Print";
        const std::wstring printer = print + L"/Printers/[PRINTER]";
        const std::wstring data = printer + L"/PrinterDriverData";
        const std::wstring user = L"1:" + drivers + L"/Printers/[PRINTER]";
        return std::map<std::wstring, std::wstring>{
            {L"CLASSES_ROOT", L"0:"},
            {L"CURRENT_USER", L"1:"},
            {L"LOCAL_MACHINE", L"2:"},
            {L"USERS", L"3:"},
            {L"USER", L"1:" + drivers},
            {L"USERSETTINGS", user + L"/Settings"},
            {L"USERSTOCK", L"1:" + drivers + L"/Paper Sizes/[PRINTER]"},
            {L"USERPAPERSIZES", user + L"/PrinterDriverData/Paper Sizes"},
            {L"CONTROL", L"2:SYSTEM/CurrentControlSet/Control"},
            {L"ENUM", L"2:SYSTEM/CurrentControlSet/Enum"},
            {L"PRINT", print},
            {L"MONITOR", print + L"/Monitors/Brandle Network Monitor"},
            {L"PNPDATA", printer + L"/PnPData"},
            {L"DATA", data},
            {L"CACHE", data + L"/Cache"},
            {L"DEBUG", data + L"/Development"},
            {L"FONTS", data + L"/Downloaded Fonts"},
            {L"MODEL", data + L"/Model"},
            {L"PAPERSIZES", data + L"/Paper Sizes"},
            {L"PRESETS", data + L"/Presets"},
            {L"SECURITY", data + L"/Security"},
            {L"SETTINGS", data + L"/Settings"},
            {L"LOCAL", L"2:" + drivers},
            {L"CRASHDUMP", L"2:" + drivers + L"/Debug/CrashDump"},
            {L"STOCK", L"2:" + drivers + L"/Paper Sizes"},
            {L"GLOBAL", L"2:" + drivers + L"/GlobalSettings"},
            {L"NETWORK", L"2:" + drivers + L"/Network/@[SERVER]"},
            {L"PARAMETERSET", L"2:" + drivers + L"/Parameter Sets"},
        };
    }();
    return aliases;
}

/// Replaces from left to right; what was put in is not looked at again.
std::wstring Replaced(const std::wstring& text, const std::wstring& what, const std::wstring& with) {
    std::wstring result;
    for (std::size_t at = 0; at < text.size();) {
        const bool here = text.compare(at, what.size(), what) == 0;
        result += here ? with : std::wstring(1, text[at]);
        at += here ? what.size() : 1;
    }
    return result;
}

std::wstring Upper(const std::wstring& text) {
    std::wstring upper(text.size() * 2 + 2, L'\0');
    const int count = LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_UPPERCASE, text.c_str(), -1, upper.data(),
                                   static_cast<int>(upper.size()));
    return count > 0 ? upper.substr(0, upper.find(L'\0')) : text;
}

std::wstring Decoded(std::wstring text) {
    const OrdinaryHeap ordinary;
    const auto digit = [](wchar_t unit) {
        const unsigned low = unit & 0xFFU;
        return low >= '0' && low <= '9' ? low - '0' : low % 16 + 9;
    };
    for (std::size_t at = text.find(L'%'); at != text.npos && at > 0 && at + 2 < text.size();
         at = text.find(L'%', at)) {
        const auto code = static_cast<wchar_t>((digit(text[at + 1]) * 16 + digit(text[at + 2])) % 256);
        text =
            text.substr(0, at) + (code == 0 ? std::wstring() : std::wstring(1, code)) + text.substr(at + 3);
    }
    return text;
}

std::wstring Expanded(const std::wstring& path) {
    const std::size_t colon = path.find(L':');
    const auto alias =
        colon == path.npos ? TheAliases().end() : TheAliases().find(Upper(path.substr(0, colon)));
    if (alias == TheAliases().end()) {
        return path;
    }
    const wchar_t last = alias->second.back();
    return alias->second + (last == L':' || last == L'/' ? L"" : L"/") + path.substr(colon + 1);
}

/// Key path and value name; nothing when the path cannot be split.
std::optional<std::pair<std::wstring, std::wstring>> Split(const std::wstring& base,
                                                           const std::wstring& value) {
    const auto escaped = [](const std::wstring& path) {
        return Replaced(Replaced(Replaced(Replaced(path, L"%%", L"%25"), L"//", L"%2F"), L"::", L"%3A"),
                        L"\\", L"/");
    };
    const std::wstring key = escaped(base);
    const std::wstring own = escaped(value);
    std::wstring combined = key;
    if (own.find(L':', 1) != own.npos) {
        combined = own;
    } else {
        while (!combined.empty() && combined.back() == L'/') {
            combined.pop_back();
        }
        if (!own.empty() && !combined.empty() && combined.back() != L':') {
            combined += L'/';
        }
        combined += own;
    }
    const std::size_t last = combined.find_last_of(L":/");
    if (last == combined.npos) {
        return std::nullopt;
    }
    if (value.empty()) {
        return std::pair(Expanded(combined), std::wstring());
    }
    return std::pair(Expanded(combined.substr(0, combined[last] == L':' ? last + 1 : last)),
                     Decoded(combined.substr(last + 1)));
}

/// Root and subkey.
std::optional<std::pair<HKEY, std::wstring>> Resolved(const std::wstring& path) {
    const std::size_t colon = path.find(L':');
    if (colon == path.npos || colon == 0) {
        return std::nullopt;
    }
    std::wstring subkey = Decoded(Replaced(path.substr(colon + 1), L"/", L"\\"));
    while (!subkey.empty() && subkey.back() == L'\\') {
        subkey.pop_back();
    }
    std::size_t at = path.find_first_not_of(L" \t");
    const bool negative = path[at] == L'-';
    at += negative || path[at] == L'+' ? 1 : 0;
    unsigned long long number = 0;
    for (; path[at] >= L'0' && path[at] <= L'9'; ++at) {
        number = number * 10 + (path[at] - L'0');
    }
    const HKEY roots[] = {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS};
    if ((negative && number != 0) || number > 3 || subkey.empty()) {
        return std::nullopt;
    }
    return std::pair(roots[number], subkey);
}

/// A path of pieces that mean something, one after the other.
std::wstring DrawPath(Case& input) {
    const OrdinaryHeap ordinary;
    constexpr const wchar_t* kPieces[] = {
        L"/",  L"\\",  L"//",  L":",   L"::",  L"%",    L"%%",     L"%2F",    L"%3a",       L"%25", L"%25",
        L"%4", L"%zz", L"%00", L"%5C", L"Key", L"a",    L"LOCAL:", L"local:", L"1:",        L"2:",  L"0:",
        L"3:", L"7:",  L"-1:", L" 2:", L"2x:", L"FOO:", L"USER:",  L"Value",  L"[PRINTER]", L"41"};
    std::wstring path;
    for (std::size_t left = input.Length(12); left > 0; --left) {
        if (input.OnceIn(12)) {
            path += input.WideText(3);
        } else if (input.OnceIn(20)) {
            path +=
                std::next(TheAliases().begin(), static_cast<std::ptrdiff_t>(input.Below(TheAliases().size())))
                    ->first +
                L":";
        } else if (input.OnceIn(40)) {
            path += input.Name(200);
        } else {
            path += input.OneOf(kPieces);
        }
    }
    return path;
}

/// The path as a text of either form, where both forms mean the same.
OString AsText(Case& input, const std::wstring& path) {
    const bool latin = std::all_of(path.begin(), path.end(), [](wchar_t unit) { return unit < 0x80; });
    return latin && input.OnceIn(2) ? OString(std::string(path.begin(), path.end()).c_str())
                                    : OString(path.c_str());
}

/// Whether the text before the colon has more digits than its reading is defined for, or perhaps digits of
/// another script, which the runtime library reads as well.
bool HasOddNumber(const std::wstring& path) {
    const std::wstring root = path.substr(0, path.find(L':'));
    return std::count_if(root.begin(), root.end(),
                         [](wchar_t unit) { return unit >= L'0' && unit <= L'9'; }) > 9 ||
           std::any_of(root.begin(), root.end(), [](wchar_t unit) { return unit >= 0x80; });
}

void LookAtRoot(const std::wstring& path) {
    HKEY root = nullptr;
    OString subkey;
    const bool resolved = ORegistry::ResolveRoot(path.c_str(), root, subkey);
    const auto expected = Resolved(path);
    EXPECT_EQ(resolved, expected.has_value());
    if (resolved && expected) {
        EXPECT_EQ(root, expected->first);
        EXPECT_EQ(subkey.Wide(), expected->second);
    }
}

FUZZ_TARGET(RegistryPaths, 1000) {
    const std::wstring base = input.OnceIn(2) ? std::wstring() : DrawPath(input);
    const std::wstring value = DrawPath(input);
    input.Say([&] { return "OString key(" + Literal(base) + "); OString value(" + Literal(value) + ");"; });
    input.Say([] { return "ORegistry().SplitValuePath(key, value);"; });
    OString key = AsText(input, base);
    OString name = AsText(input, value);
    const ORegistry registry;
    const bool split = registry.SplitValuePath(key, name);
    const auto expected = Split(base, value);
    ASSERT_EQ(split, expected.has_value());
    if (!expected) {
        return;
    }
    EXPECT_EQ(key.Wide(), expected->first);
    EXPECT_EQ(name.Wide(), expected->second);
    if (HasOddNumber(expected->first)) {
        return;
    }
    input.Say([&] { return "ORegistry::ResolveRoot(" + Literal(expected->first) + ", root, subkey);"; });
    LookAtRoot(expected->first);
}

FUZZ_TARGET(PercentEscapes, 2000) {
    constexpr const wchar_t* kPieces[] = {L"%", L"2", L"5", L"%25", L"F", L"g", L"%2", L"0", L"\xFF21", L"x"};
    std::wstring text;
    for (std::size_t left = input.Length(40); left > 0; --left) {
        text += input.OnceIn(8) ? input.WideText(2) : input.OneOf(kPieces);
    }
    input.Say([&] { return "ORegistry::DecodePercent(" + Literal(text) + ");"; });
    OString decoded = AsText(input, text);
    ORegistry::DecodePercent(decoded);
    EXPECT_EQ(decoded.Wide(), Decoded(text));
}

/// Parts of names that the registry takes as they are.
std::wstring DrawName(Case& input) {
    constexpr const wchar_t* kPieces[] = {L"a",   L"B", L"//",     L"::",     L"%%", L"%2f",
                                          L"%3A", L" ", L"\x00E9", L"\x30C9", L"7"};
    std::wstring name = L"n";
    for (std::size_t left = input.Below(8); left > 0; --left) {
        name += input.OneOf(kPieces);
    }
    return name;
}

FUZZ_TARGET(RegistryValues, 60) {
    if (input.Number() % 16 != 0 && input.Number() > 1000) {
        return; // the registry itself is slow
    }
    const ScratchKey own(HKEY_CURRENT_USER,
                         L"Software\\kemba fuzz " + std::to_wstring(GetCurrentProcessId()));
    std::wstring path = (input.OnceIn(2) ? L"CURRENT_USER:" : L"1:") + own.Path();
    for (std::size_t left = input.Below(4); left > 0; --left) {
        path += (input.OnceIn(2) ? L"\\" : L"/") + DrawName(input);
    }
    const std::wstring folder = path;
    path += L"/" + DrawName(input);
    const auto number = static_cast<std::uint32_t>(input.Bits());
    input.Say([&] { return "registry.WriteDword(" + Literal(path) + ", " + std::to_string(number) + "U);"; });
    const ORegistry registry;
    EXPECT_EQ(registry.WriteDword(path.c_str(), number), 4);

    const auto split = Split(std::wstring(), path);
    const auto resolved = Resolved(split ? split->first : std::wstring());
    ASSERT_TRUE(resolved);
    DWORD found = 0;
    DWORD size = sizeof(found);
    EXPECT_EQ(RegGetValueW(resolved->first, resolved->second.c_str(), split->second.c_str(), RRF_RT_REG_DWORD,
                           nullptr, &found, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(found, number);

    // Any bytes as a text; the type does not count, nor whether a zero ends it.
    const std::string bytes = input.Bytes(input.OnceIn(10) ? 9000 : 40);
    const std::string stored = bytes + "xx"; // a zero behind a text is taken for its end, and stored as well
    input.Say([&] { return "the value's bytes: " + Literal(bytes); });
    // One byte alone is never a text: for such a one Wine looks at the byte before the buffer.
    const auto type = bytes.size() == 1 ? REG_BINARY : static_cast<DWORD>(input.Below(12));
    EXPECT_EQ(RegSetKeyValueW(resolved->first, resolved->second.c_str(), split->second.c_str(), type,
                              stored.data(), static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
    std::wstring text((bytes.size() + 1) / 2, L'\0');
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(text.data()));
    text = bytes.empty() ? L"missing" : text.substr(0, text.find(L'\0'));
    EXPECT_EQ(registry.ReadString(path.c_str(), L"missing").Wide(), text);

    const auto capacity = static_cast<std::uint32_t>(input.Length(60));
    std::vector<char> read(capacity, 'x');
    input.Say(
        [&] { return "registry.ReadValue(" + Literal(path) + ", read, " + std::to_string(capacity) + ");"; });
    const std::int32_t result = registry.ReadValue(path.c_str(), read.data(), capacity);
    if (bytes.size() > capacity) {
        EXPECT_EQ(result, -4);
        EXPECT_EQ(std::string(read.begin(), read.end()), std::string(capacity, 'x'));
    } else {
        EXPECT_EQ(result, static_cast<std::int32_t>(bytes.size()));
        EXPECT_EQ(std::string(read.begin(), read.end()), bytes + std::string(capacity - bytes.size(), 'x'));
    }
}

} // namespace
