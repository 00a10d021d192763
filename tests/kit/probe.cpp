// kit-probe WORD ...: shows the words after the first, and behaves as the first one says.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string_view>

namespace {

void WriteBytes(DWORD stream, const void* bytes, DWORD count) {
    DWORD written = 0;
    WriteFile(GetStdHandle(stream), bytes, count, &written, nullptr);
}

/// The UTF-16 units with a zero after each word.
void ShowWords(int count, wchar_t* words[]) {
    for (int i = 2; i < count; ++i) {
        WriteBytes(STD_OUTPUT_HANDLE, words[i],
                   static_cast<DWORD>((std::wcslen(words[i]) + 1) * sizeof(wchar_t)));
    }
}

} // namespace

int wmain(int count, wchar_t* words[]) {
    const std::wstring_view verb = count > 1 ? words[1] : L"";
    if (verb == L"words") {
        ShowWords(count, words);
    }
    if (verb == L"status") {
        return static_cast<int>(std::wcstoul(words[2], nullptr, 0));
    }
    if (verb == L"variable") {
        wchar_t value[256];
        const DWORD length = GetEnvironmentVariableW(words[2], value, 256);
        WriteBytes(STD_OUTPUT_HANDLE, value, static_cast<DWORD>(length * sizeof(wchar_t)));
    }
    if (verb == L"both") {
        WriteBytes(STD_OUTPUT_HANDLE, "out\0\n", 5);
        WriteBytes(STD_ERROR_HANDLE, "err\r\n", 5);
    }
    if (verb == L"much") {
        for (int i = 0; i < 100'000; ++i) {
            std::fputs("0123456789", stdout);
        }
    }
    if (verb == L"input") {
        return std::getchar() == EOF ? 0 : 1;
    }
    if (verb == L"sleep") {
        Sleep(60'000);
    }
    return 0;
}
