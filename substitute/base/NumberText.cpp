// Numbers in words.
#include "substitute/base/NumberText.h"

#include <objbase.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace kemba::substitute {

std::wstring NumberText(std::uint64_t number, std::size_t width, std::wstring_view digits) {
    wchar_t text[64]; // for every bit one digit, at most
    wchar_t* const end = std::end(text);
    wchar_t* begin = end;
    for (; number != 0; number /= digits.size()) {
        *--begin = digits[number % digits.size()];
    }
    const auto count = static_cast<std::size_t>(end - begin);
    return std::wstring(count < width ? width - count : 0, digits.front()).append(begin, end);
}

std::wstring Braced(REFGUID id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return text;
}

} // namespace kemba::substitute
