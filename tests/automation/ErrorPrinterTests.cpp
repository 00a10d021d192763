// The automation error printer: which lines are printed, and the description that is not.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <string>

#include "automation/ComError.h"
#include "automation/ErrorPrinter.h"
#include "automation/Owners.h"
#include "messages/ConsoleOutput.h"
#include "tests/kit/Owners.h"
#include "tests/kit/StdoutCapture.h"

using namespace kemba;
using namespace kit;

namespace {

constexpr HRESULT kStatus = static_cast<HRESULT>(0x80040201);
const std::string kErrorLines = "*** COM Exception ***\r\nError: IDispatch error #1\r\n";

std::string Printed(const ComError& error, bool quiet = false) {
    ConsoleOutput console(quiet);
    StdoutCapture capture;
    kemba::PrintComError(console, error);
    return capture.Finish();
}

/// Error information as a server makes it; null leaves a text out.
ComPtr<IErrorInfo> MakeInformation(const wchar_t* source, const wchar_t* description) {
    ComPtr<ICreateErrorInfo> creator;
    if (FAILED(CreateErrorInfo(creator.Put()))) {
        ADD_FAILURE() << "no error information";
        return {};
    }
    if (source) {
        creator->SetSource(const_cast<wchar_t*>(source));
    }
    if (description) {
        creator->SetDescription(const_cast<wchar_t*>(description));
    }
    return Query<IErrorInfo>(*creator);
}

/// Error information that refuses one of its questions and journals the order in which they come.
struct Refusing : IErrorInfo {
    explicit Refusing(std::string& order) : journal(&order) {}
    std::string* journal;
    HRESULT sourceStatus = S_OK;
    HRESULT descriptionStatus = S_OK;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    HRESULT STDMETHODCALLTYPE GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* text) override {
        *journal += "source ";
        *text = SUCCEEDED(sourceStatus) ? SysAllocString(L"Driver") : nullptr;
        return sourceStatus;
    }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* text) override {
        *journal += "description ";
        *text = SUCCEEDED(descriptionStatus) ? SysAllocString(L"Out of paper") : nullptr;
        return descriptionStatus;
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD*) override { return E_NOTIMPL; }
};

TEST(ErrorPrinter, WithoutInformationOnlyTheStatusIsPrinted) {
    EXPECT_EQ(Printed(ComError(kStatus)), kErrorLines);
}

TEST(ErrorPrinter, AKnownStatusIsPrintedWithTheSystemsText) {
    const ComError error(static_cast<HRESULT>(0x80070005));
    const std::string text = OString(error.GetMessageText()).Narrow();
    EXPECT_EQ(Printed(error), "*** COM Exception ***\r\nError: " + text + "\r\n");
}

TEST(ErrorPrinter, TheSourceIsPrintedAndTheDescriptionIsAnEmptyLine) {
    EXPECT_EQ(Printed(ComError(kStatus, MakeInformation(L"Driver", L"Out of paper"))),
              kErrorLines + "Source: Driver\r\n\r\n");
}

TEST(ErrorPrinter, AnEmptyOrMissingSourceLeavesItsLineOut) {
    for (const wchar_t* const source : {L"", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_EQ(Printed(ComError(kStatus, MakeInformation(source, L"Out of paper"))), kErrorLines + "\r\n");
    }
}

TEST(ErrorPrinter, AnEmptyOrMissingDescriptionLeavesItsLineOut) {
    for (const wchar_t* const description : {L"", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_EQ(Printed(ComError(kStatus, MakeInformation(L"Driver", description))),
                  kErrorLines + "Source: Driver\r\n");
    }
}

TEST(ErrorPrinter, ARefusedQuestionCountsAsNoText) {
    std::string order;
    Refusing noSource(order);
    noSource.sourceStatus = E_FAIL;
    EXPECT_EQ(Printed(ComError(kStatus, ComPtr<IErrorInfo>(&noSource))), kErrorLines + "\r\n");
    Refusing noDescription(order);
    noDescription.descriptionStatus = E_FAIL;
    EXPECT_EQ(Printed(ComError(kStatus, ComPtr<IErrorInfo>(&noDescription))),
              kErrorLines + "Source: Driver\r\n");
    EXPECT_EQ(order, "source description source description ");
}

TEST(ErrorPrinter, QuietModePrintsNothing) {
    EXPECT_EQ(Printed(ComError(kStatus, MakeInformation(L"Driver", L"Out of paper")), true), "");
}

} // namespace
