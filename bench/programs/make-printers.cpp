// Sees to it that there are as many printers as the word says, "Label 0001" and so on, and no others. What is
// sent to them is thrown away.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <set>
#include <string>

#include "demo/Printers.h"
#include "demo/SpoolerError.h"
#include "demo/SpoolerLock.h"

namespace {

constexpr wchar_t kPort[] = L"BENCH:";
constexpr wchar_t kNowhere[] = L"/dev/null"; // of the host

std::wstring NameOf(int number) {
    const std::wstring digits = std::to_wstring(number);
    return L"Label " + std::wstring(4 - std::min(digits.size(), std::size_t{4}), L'0') + digits;
}

void Provide(int count) {
    const demo::SpoolerLock lock(L"kemba bench printers");
    const LONG status = RegSetKeyValueW(HKEY_CURRENT_USER, LR"(Software\Wine\Printing\Spooler)", kPort,
                                        REG_SZ, kNowhere, sizeof kNowhere);
    if (status != ERROR_SUCCESS) {
        throw demo::SpoolerError("connecting a printer port", static_cast<DWORD>(status));
    }
    std::set<std::wstring> present;
    for (const std::wstring& name : demo::PrinterNames()) {
        present.insert(name);
    }
    for (int number = 1; number <= count; ++number) {
        if (present.erase(NameOf(number)) == 0) {
            demo::MakePrinter(NameOf(number), {.port = kPort, .comment = L"Labels for parcels"});
        }
    }
    for (const std::wstring& name : present) {
        demo::RemovePrinter(name);
    }
}

} // namespace

int wmain(int count, wchar_t* words[]) {
    try {
        Provide(count > 1 ? std::stoi(words[1]) : 1);
        return 0;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "make-printers: %s\n", error.what()));
        return 1;
    }
}
