// Looking a section up, in the program's own catalogue.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "bench/micro/Micro.h"
#include "core/OString.h"
#include "messages/TextResource.h"

namespace {

/// The least that a lookup without an index has to do: find the header's bytes, and convert the section
/// alone.
std::wstring BareLookup(std::string_view key) {
    const HRSRC found = FindResourceW(nullptr, L"KEMBA[ENU].TXT", L"BINARY");
    const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
    const auto* const bytes = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    if (!bytes) {
        return {};
    }
    const std::string_view catalogue(bytes, SizeofResource(nullptr, found));
    const auto header = catalogue.find(key);
    if (header == std::string_view::npos) {
        return {};
    }
    const auto begin = std::min(header + key.size(), catalogue.size());
    std::string_view body = catalogue.substr(begin, catalogue.find("\n#", begin) - begin);
    body = body.substr(0, body.find_last_not_of(" \t\r\n") + 1);
    std::wstring text(body.size(), L'\0');
    const int made = MultiByteToWideChar(CP_ACP, 0, body.data(), static_cast<int>(body.size()), text.data(),
                                         static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(made));
    return text;
}

} // namespace

void micro::RegisterCatalogue() {
    const struct {
        const char* name;
        const char* key;
    } lookups[] = {
        {"Catalogue/First", "help:action"},
        {"Catalogue/Middle", "error:COM"},
        {"Catalogue/Last", "text:Unknown"},
        {"Catalogue/Missing", "error:COM_Descripion"},
    };
    for (const auto& lookup : lookups) {
        Pair(
            lookup.name,
            [key = lookup.key] { return [key = OString(key)] { return TextResource().GetText(key); }; },
            [key = lookup.key] {
                return [key = "#" + std::string(key) + "\r\n"] { return BareLookup(key); };
            });
    }
}
