// The automation exception: message texts and ownership.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <string_view>

#include "automation/ComError.h"
#include "automation/Owners.h"
#include "tests/kit/Holdings.h"
#include "tests/kit/Owners.h"

using namespace kemba;
using namespace kit;

namespace {

std::wstring MessageOf(unsigned long status) {
    return ComError(static_cast<HRESULT>(status)).GetMessageText();
}

/// The system's own text with its line end, or empty.
std::wstring SystemText(unsigned long status) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        status, 0x400, text, 512, nullptr);
    return {text, length};
}

TEST(ComError, AKnownStatusReadsAsTheSystemHasItWithoutItsLineEnd) {
    for (const unsigned long status : {0x80070005UL, 0x80004005UL, 0x80070002UL, 5UL}) {
        SCOPED_TRACE(status);
        const std::wstring system = SystemText(status);
        ASSERT_GT(system.size(), 2U);
        ASSERT_EQ(system.substr(system.size() - 2), L"\r\n");
        EXPECT_EQ(MessageOf(status), system.substr(0, system.size() - 2));
    }
}

struct NumberRow {
    unsigned long status;
    const wchar_t* text;
};

TEST(ComError, AStatusWithoutASystemTextReadsAsItsNumber) {
    constexpr NumberRow kRows[] = {
        {0x80040200, L"Unknown error 0x80040200"}, // one below the interfaces' own range
        {0x80040201, L"IDispatch error #1"},       {0x80041234, L"IDispatch error #4148"},
        {0x8004FFFF, L"IDispatch error #65023"},   {0x80050000, L"Unknown error 0x80050000"},
        {0x8007FFFF, L"Unknown error 0x8007FFFF"}, {0xFFFFFFFF, L"Unknown error 0xFFFFFFFF"},
        {0xABCDEF01, L"Unknown error 0xABCDEF01"},
    };
    for (const NumberRow& row : kRows) {
        SCOPED_TRACE(row.text);
        ASSERT_EQ(SystemText(row.status), L"") << "the system knows this status; choose another";
        EXPECT_EQ(MessageOf(row.status), row.text);
    }
}

TEST(ComError, TheNumberIsNotPadded) {
    ASSERT_EQ(SystemText(0x00ABCDEF), L"");
    EXPECT_EQ(MessageOf(0x00ABCDEF), L"Unknown error 0xABCDEF");
}

TEST(ComError, TheTextIsMadeOnceAndKept) {
    const ComError error(E_ACCESSDENIED);
    EXPECT_EQ(error.GetMessageText(), error.GetMessageText());
}

TEST(ComError, ANumberWithoutTheMemoryForItsTextIsToldByAnException) {
    static bool refused = false;
    WatchHoldings(GetModuleHandleW(nullptr),
                  [](const char* call) { return !refused || std::string_view(call) != "LocalAlloc"; });
    const ComError error(static_cast<HRESULT>(0x80041234));
    refused = true;
    EXPECT_THROW(error.GetMessageText(), std::bad_alloc);
    refused = false;
    EXPECT_STREQ(error.GetMessageText(), L"IDispatch error #4148");
}

TEST(ComError, CopiesCarryStatusAndInformation) {
    ComPtr<ICreateErrorInfo> creator;
    ASSERT_EQ(CreateErrorInfo(creator.Put()), S_OK);
    const auto information = Query<IErrorInfo>(*creator);
    {
        const ComError error(E_FAIL, ComPtr<IErrorInfo>::Share(information.Get()));
        EXPECT_STREQ(error.GetMessageText(), ComError(E_FAIL).GetMessageText());
        const ComError copy =
            error; // NOLINT(performance-unnecessary-copy-initialization): the copy is the test
        EXPECT_EQ(copy.Status(), E_FAIL);
        EXPECT_EQ(copy.Information(), information.Get());
        EXPECT_STREQ(copy.GetMessageText(), error.GetMessageText());
    }
    EXPECT_EQ(ReferencesTo(*information), 2U); // the creator's and ours
}

} // namespace
