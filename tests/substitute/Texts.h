// Looking at the beginning of a text.
#pragma once

#include <gtest/gtest.h>

#include <string>

/// Succeeds when the text begins so; what follows may be the system's own words.
inline testing::AssertionResult BeginsWith(const std::wstring& text, const std::wstring& begin) {
    if (text.compare(0, begin.size(), begin) == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(text);
}
