// Looking at the beginning of a text.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace kit {

/// Succeeds when the text begins so; what follows may be the system's own words.
inline testing::AssertionResult BeginsWith(const std::wstring& text, const std::wstring& begin) {
    if (text.compare(0, begin.size(), begin) == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(text);
}

/// Succeeds when a failure's text has no words of the C++ runtime.
inline testing::AssertionResult SpeaksForItself(const std::wstring& text) {
    for (const wchar_t* const word : {L"basic_string", L"vector", L"_M_", L"std::", L"bad_alloc", L"::"}) {
        if (text.find(word) != std::wstring::npos) {
            return testing::AssertionFailure() << testing::PrintToString(text);
        }
    }
    return testing::AssertionSuccess();
}

} // namespace kit
