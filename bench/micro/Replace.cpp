// Replacing every occurrence of a text, as a message does with its argument and a path with its separators.
#include <cstddef>
#include <string>

#include "bench/micro/Micro.h"
#include "core/OString.h"

namespace {

constexpr const wchar_t* kWhat = L"%1";
constexpr const wchar_t* kWith = L"Dock 12";

std::wstring BareReplaced(const std::wstring& text) {
    std::wstring result;
    std::size_t done = 0;
    for (auto found = text.find(kWhat); found != std::wstring::npos; found = text.find(kWhat, done)) {
        result.append(text, done, found - done).append(kWith);
        done = found + 2;
    }
    return result.append(text, done);
}

} // namespace

void micro::RegisterReplace() {
    const struct {
        const char* name;
        const wchar_t* sample;
    } texts[] = {
        {"Replace/None/", L"The printer is not found. "},
        {"Replace/Few/", L"The printer '%1' is not found among all those that are to be had. "},
        {"Replace/Every/", L"%1"},
    };
    for (const auto& text : texts) {
        for (const std::size_t size : kSizes) {
            const auto make = [sample = text.sample, size] { return Repeated(sample, size); };
            Pair(
                text.name + std::to_string(size),
                [make] {
                    return [text = OString(make().c_str()), what = OString(kWhat), with = OString(kWith)] {
                        return OString(text).ReplaceAll(what, with);
                    };
                },
                [make] { return [text = make()] { return BareReplaced(text); }; });
        }
    }
}
