// Rows by their words.
#include <gtest/gtest.h>

#include "core/WordTable.h"

namespace {

struct Row {
    const wchar_t* word;
    const wchar_t* other;
};

constexpr Row kRows[] = {
    {L"feed", L"get"}, {L"Cut", nullptr}, {nullptr, L"set"}, {L"?", L"twice"}, {L"CUT", L"TWICE"}};

TEST(FindRow, FindsWholeWordsInAnyCase) {
    EXPECT_EQ(OCore::FindRow(kRows, L"FEED"), &kRows[0]);
    EXPECT_EQ(OCore::FindRow(kRows, L"?"), &kRows[3]);
    for (const wchar_t* const word : {L"", L"fee", L"feeds", L" feed", L"feed ", L"get", L"??"}) {
        EXPECT_EQ(OCore::FindRow(kRows, word), nullptr);
    }
    constexpr Row kLongS[] = {{L"set", nullptr}};
    EXPECT_EQ(OCore::FindRow(kLongS, L"\x017F"
                                     L"et"),
              nullptr)
        << "nothing but a to z is folded";
}

TEST(FindRow, TheFirstOfTwoIsFound) {
    EXPECT_EQ(OCore::FindRow(kRows, L"cut"), &kRows[1]);
}

TEST(FindRow, LooksIntoTheColumnThatIsNamed) {
    EXPECT_EQ(OCore::FindRow(kRows, L"GET", &Row::other), &kRows[0]);
    EXPECT_EQ(OCore::FindRow(kRows, L"twice", &Row::other), &kRows[3]);
    EXPECT_EQ(OCore::FindRow(kRows, L"feed", &Row::other), nullptr);
}

} // namespace
