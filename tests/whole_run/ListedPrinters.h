// Printers that only the list of the spooler has.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/kit/SetAside.h"

namespace kit {

/// A spooler whose list of printers the test writes.
class ListedPrinters {
  public:
    explicit ListedPrinters(std::vector<std::wstring> names) {
        s_names = std::move(names);
        m_calls->enumPrinters = Enumerate;
    }

  private:
    static WINBOOL WINAPI Enumerate(DWORD flags, LPWSTR, DWORD level, LPBYTE buffer, DWORD size,
                                    LPDWORD needed, LPDWORD count) {
        EXPECT_EQ(flags, 6U);
        EXPECT_EQ(level, 1U);
        const std::size_t bytes = s_names.size() * sizeof(PRINTER_INFO_1W);
        *needed = static_cast<DWORD>(bytes);
        *count = 0;
        if (size < bytes) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        for (std::size_t index = 0; index < s_names.size(); ++index) {
            PRINTER_INFO_1W entry{};
            entry.pName = s_names[index].data();
            std::memcpy(buffer + index * sizeof(entry), &entry, sizeof(entry));
        }
        *count = static_cast<DWORD>(s_names.size());
        return TRUE;
    }

    inline static std::vector<std::wstring> s_names;
    SystemCallsPreset m_calls;
};

/// That many names.
inline std::vector<std::wstring> Numbered(int count) {
    std::vector<std::wstring> names;
    for (int number = 1; number <= count; ++number) {
        names.push_back(L"Label " + std::to_wstring(number));
    }
    return names;
}

} // namespace kit
