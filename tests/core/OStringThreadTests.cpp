// Texts that several threads share.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "core/OString.h"
#include "tests/kit/AtOnce.h"

using namespace kit;

namespace {

constexpr int kThreads = 8;

/// Texts with both forms, as those must have that several threads read.
std::vector<OString> SharedTexts() {
    std::vector<OString> texts{"", "short", std::wstring(500, L'l').c_str(),
                               L"\x00DC"
                               L"ber 100%"};
    for (const OString& text : texts) {
        text.Narrow();
        text.Wide();
    }
    return texts;
}

TEST(OStringThreads, ReadTextsThatAreCopiedAndDestroyedMeanwhile) {
    const std::vector<OString> texts = SharedTexts();
    std::vector<const char*> narrow;
    std::vector<const wchar_t*> wide;
    for (const OString& text : texts) {
        narrow.push_back(text.Narrow());
        wide.push_back(text.Wide());
    }
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int) {
        for (int round = 0; round < 40'000; ++round) {
            for (std::size_t index = 0; index < texts.size(); ++index) {
                const OString copy = texts[index];
                OString assigned = "other";
                assigned = copy;
                // The very same bytes: none is made anew.
                wrong += assigned.Narrow() != narrow[index] || assigned.Wide() != wide[index] ||
                         copy.GetLength() != texts[index].GetLength();
            }
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(texts[0].GetBody(), nullptr);
    for (std::size_t index = 1; index < texts.size(); ++index) {
        EXPECT_EQ(texts[index].GetBody()->references, 1U);
    }
}

TEST(OStringThreads, ChangeTheirOwnCopiesOnly) {
    const std::vector<OString> texts = SharedTexts();
    std::vector<std::wstring> before;
    for (const OString& text : texts) {
        before.push_back(text.Wide());
    }
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int thread) {
        const std::wstring own(1, static_cast<wchar_t>(L'0' + thread));
        for (int round = 0; round < 400; ++round) {
            for (std::size_t index = 0; index < texts.size(); ++index) {
                OString copy = texts[index];
                copy.Append(own.c_str()).ReplaceAll(L"l", L"ll").Insert(0, L"<").TrimRight(own.c_str());
                OString back = copy.From(1).ReplaceAll(L"ll", L"l");
                wrong += before[index] != back.Wide() || before[index] != texts[index].Wide();
            }
        }
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
