// Making the missing form of a text: by the system's code pages, and by the library's own UTF-8.
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/micro/Micro.h"
#include "core/OString.h"

namespace {

struct Language {
    const char* name;
    const wchar_t* sample;
    std::uint32_t codePage;
};

const Language kLanguages[] = {
    {"ASCII", L"Dock 12 is out of labels; ", 1252},
    {"Latin", L"H\u00f6he f\u00fcr \u00c9tiquettes \u00e0 c\u00f4t\u00e9; ", 1252},
    {"Japanese", L"\u30e9\u30d9\u30eb\u3092\u5370\u5237\u3059\u308b\u30d7\u30ea\u30f3\u30bf\u30fc\u3002",
     932},
};

std::string InBytes(const std::wstring& text, UINT codePage) {
    std::string bytes(text.size() * 4, '\0');
    const int made = WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()),
                                         bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(made));
    return bytes;
}

/// Drops a form, so that the next use makes it anew.
template<class Form>
void Drop(const Form& form) {
    const_cast<Form&>(form).reset();
}

auto Narrowing(const std::wstring& text, std::uint32_t codePage) {
    return [text = OString(text.c_str()).InCodePage(codePage)] {
        Drop(text.GetBody()->narrow);
        return text.Narrow();
    };
}

auto Widening(const std::string& bytes, std::uint32_t codePage) {
    return [text = OString(bytes.c_str(), codePage)] {
        Drop(text.GetBody()->wide);
        return text.Wide();
    };
}

/// The call alone, into a buffer of its own that has room enough, as the text has to make one.
auto BareNarrowing(const std::wstring& text, UINT codePage) {
    return [text, codePage, room = (text.size() + 1) * (codePage == CP_UTF8 ? 4 : 2)] {
        const auto buffer = std::make_unique_for_overwrite<char[]>(room);
        WideCharToMultiByte(codePage, 0, text.c_str(), -1, buffer.get(), static_cast<int>(room), nullptr,
                            nullptr);
        return buffer[0];
    };
}

auto BareWidening(const std::string& bytes, UINT codePage) {
    return [bytes, codePage, room = bytes.size() + 1] {
        const auto buffer = std::make_unique_for_overwrite<wchar_t[]>(room);
        MultiByteToWideChar(codePage, 0, bytes.c_str(), -1, buffer.get(), static_cast<int>(room));
        return buffer[0];
    };
}

/// Both ways; `own` is the code page's number in the library.
void RegisterWays(const std::string& name, const Language& language, UINT codePage, std::uint32_t own) {
    for (const std::size_t size : micro::kSizes) {
        const auto text = [language, size] { return micro::Repeated(language.sample, size); };
        const std::string end = std::string(name) + "/" + language.name + "/" + std::to_string(size);
        micro::Pair(
            "Convert/To" + end, [=] { return Narrowing(text(), own); },
            [=] { return BareNarrowing(text(), codePage); });
        micro::Pair(
            "Convert/From" + end, [=] { return Widening(InBytes(text(), codePage), own); },
            [=] { return BareWidening(InBytes(text(), codePage), codePage); });
    }
}

} // namespace

void micro::RegisterConversion() {
    for (const Language& language : kLanguages) {
        RegisterWays("CodePage", language, language.codePage, language.codePage);
        RegisterWays("Utf8", language, CP_UTF8, OCore::kCodePageUtf8);
    }
}
