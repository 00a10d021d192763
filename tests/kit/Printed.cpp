// What the program's error printer shows, from the system's own texts.
#include "tests/kit/Printed.h"

#include <cstdio>
#include <string>

namespace kit {

Lines ErrorLines(HRESULT status) {
    wchar_t text[512];
    if (FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(status), 0, text, 512, nullptr) != 0) {
        return {"*** COM Exception ***", std::string("Error: ") + OString(text).TrimRight(L"\r\n").Narrow()};
    }
    const auto number = static_cast<unsigned long>(status);
    const bool isOwn = number > 0x80040200 && number <= 0x8004FFFF;
    char shown[40];
    std::snprintf(shown, sizeof shown, isOwn ? "Error: IDispatch error #%lu" : "Error: Unknown error 0x%lX",
                  isOwn ? number - 0x80040200 : number);
    return {"*** COM Exception ***", shown};
}

} // namespace kit
