// ended-program WORD: comes to the end that the word names; status 0 and a line of output if it goes on.
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <exception>
#include <new>
#include <string_view>

#include "core/ProgramEnd.h"

namespace {

/// More than any address space holds; not a constant, which the compiler would warn of.
volatile std::size_t tooMuch = SIZE_MAX / 4;

const bool asked = std::wcsstr(GetCommandLineW(), L" early") && std::malloc(tooMuch) != nullptr;

[[gnu::noinline]] void Overflow(const char* text, std::size_t size) {
    char small[8];
    std::memcpy(small, text, size);
    OutputDebugStringA(small);
}

void Throw() noexcept(false) {
    throw std::bad_alloc();
}

[[gnu::noinline]] void ThrowThroughNoexcept() noexcept {
    Throw();
}

} // namespace

int wmain(int count, wchar_t** words) {
    OCore::BeginProgram();
    const std::wstring_view word = count > 1 ? words[1] : L"";
    if (word == L"throw") {
        Throw();
    } else if (word == L"noexcept") {
        ThrowThroughNoexcept();
    } else if (word == L"terminate") {
        std::terminate();
    } else if (word == L"abort") {
        std::abort();
    } else if (word == L"zeroed") {
        return std::calloc(tooMuch, 2) != nullptr;
    } else if (word == L"overflow") {
        char text[64] = {};
        Overflow(text, word.size() * 8);
    } else if (word == L"malloc") {
        return std::malloc(tooMuch) != nullptr;
    }
    return asked;
}
