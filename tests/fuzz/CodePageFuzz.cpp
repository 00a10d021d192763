// Every installed code page there and back.
#include <windows.h>

#include <cstddef>
#include <cwchar>
#include <string>
#include <vector>

#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/fuzz/TextModel.h"

using namespace kit;

namespace {

/// A code page, and units that it can hold: what the system makes of them comes back as they were.
struct CodePage {
    UINT number = 0;
    std::wstring held;
};

std::vector<UINT> g_numbers;

BOOL CALLBACK Note(wchar_t* number) {
    g_numbers.push_back(static_cast<UINT>(std::wcstoul(number, nullptr, 10)));
    return TRUE;
}

bool ComesBack(wchar_t unit, UINT codePage) {
    const std::wstring units(1, unit);
    const std::string bytes = NarrowOf(units, codePage);
    return !bytes.empty() && bytes.size() <= 2 && WideOf(bytes, codePage) == units;
}

/// All of them, once; made on the ordinary heap, where they stay.
const std::vector<CodePage>& TheCodePages() {
    static const std::vector<CodePage> pages = [] {
        const OrdinaryHeap ordinary;
        EnumSystemCodePagesW(Note, CP_INSTALLED);
        std::vector<CodePage> made;
        for (const UINT number : g_numbers) {
            CodePage& page = made.emplace_back(CodePage{number, {}});
            for (unsigned unit = 1; unit < 0xD800; unit += unit < 0x600 ? 1 : 7) {
                if (ComesBack(static_cast<wchar_t>(unit), number)) {
                    page.held += static_cast<wchar_t>(unit);
                }
            }
        }
        return made;
    }();
    return pages;
}

/// How many characters the buffers of a text of that length have room for.
std::size_t Capacity(std::size_t length) {
    return length + 1 <= 32 ? 32 : (length + 32) / 32 * 32;
}

FUZZ_TARGET(CodePages, 8000) {
    const std::vector<CodePage>& pages = TheCodePages();
    ASSERT_GT(pages.size(), 20U);
    const CodePage& page = pages[input.Number() % pages.size()];

    std::wstring held(input.Length(150), L'a');
    for (wchar_t& unit : held) {
        unit = input.OneOf(page.held);
    }
    input.Say([&] {
        return "OString(" + Literal(held) + ").InCodePage(" + std::to_string(page.number) + ").Narrow();";
    });
    const OString there = OString(held.c_str()).InCodePage(page.number);
    EXPECT_EQ(OString(there.Narrow(), page.number).Wide(), held) << "code page " << page.number;

    const std::string bytes =
        input.OnceIn(2) ? input.Text(150) : std::string(there.Narrow()).substr(input.Below(held.size() + 1));
    input.Say([&] { return "OString(" + Literal(bytes) + ", " + std::to_string(page.number) + ").Wide();"; });
    EXPECT_EQ(OString(bytes.c_str(), page.number).Wide(), WideOf(bytes, page.number, Capacity(bytes.size())))
        << "code page " << page.number;

    const std::wstring units = input.WideText(150);
    input.Say([&] {
        return "OString(" + Literal(units) + ").InCodePage(" + std::to_string(page.number) + ").Narrow();";
    });
    EXPECT_EQ(OString(units.c_str()).InCodePage(page.number).Narrow(),
              NarrowOf(units, page.number, 2 * Capacity(units.size())))
        << "code page " << page.number;
}

} // namespace
