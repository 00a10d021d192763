// Actions: what is sent, shown and answered for each code, with and without execution.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "substitute/objects/DriverActionsObject.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/Texts.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class PerformAction : public ObjectFixture {
  protected:
    PerformAction() {
        profileFolder = folder.Path();
        spooler.printers[L"Label A"].driver = L"Zippy 300";
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }
    void Profile(const std::string& text) { folder.Put(L"Zippy 300.profile", text); }

    static VARIANT Argument(IDispatch* object) {
        VARIANT argument = {};
        argument.vt = VT_DISPATCH;
        argument.pdispVal = object;
        return argument;
    }
    HRESULT Perform(LONG code, VARIANT_BOOL execute) {
        EXPECT_EQ(request->PutExecute(execute), S_OK);
        return automation->PerformAction(code, Argument(request.Get()));
    }
    bool Supported() {
        VARIANT_BOOL value = 42;
        EXPECT_EQ(request->GetSupported(&value), S_OK);
        EXPECT_TRUE(value == VARIANT_TRUE || value == VARIANT_FALSE);
        return value == VARIANT_TRUE;
    }
    bool Displays() {
        VARIANT_BOOL value = 42;
        EXPECT_EQ(request->GetDisplaysInterface(&value), S_OK);
        EXPECT_TRUE(value == VARIANT_TRUE || value == VARIANT_FALSE);
        return value == VARIANT_TRUE;
    }
    bool Untouched() const { return spooler.journal.empty(); }

    TemporaryFolder folder;
    ComPtr<DriverAutomationObject> automation = MakeAutomation();
    ComPtr<DriverActionsObject> request = MakeObject<DriverActionsObject>(context);
};

const struct {
    LONG code;
    const char* line;
    const wchar_t* word;
} kByteActions[] = {
    {1, "Test = \"1\"", L"Test"},
    {2, "Blank = \"2\"", L"Blank"},
    {3, "Cut = \"3\"", L"Cut"},
    {4, "Feed = \"4\"", L"Feed"},
    {7, "Reset = \"7\"", L"Reset"},
    {8, "FactoryDefaults = \"8\"", L"FactoryDefaults"},
    {9, "Calibrate = \"9\"", L"Calibrate"},
    {10, "PrintConfiguration = NUL \"10\"", L"PrintConfiguration"},
};

TEST_F(PerformAction, AnActionOfTheProfileIsSentAsOneJobWithoutAnyDialog) {
    for (const auto& row : kByteActions) {
        SCOPED_TRACE(row.code);
        Profile(row.line);
        spooler.journal.clear();
        spooler.printed.clear();
        EXPECT_EQ(Perform(row.code, 1), S_OK);
        EXPECT_TRUE(Supported());
        EXPECT_FALSE(Displays());
        EXPECT_EQ(spooler.printed, row.code == 10 ? std::string("\0"
                                                                "10",
                                                                3)
                                                  : std::to_string(row.code));
        EXPECT_EQ(spooler.journal.front(), std::wstring(L"RAW job ") + row.word);
    }
}

TEST_F(PerformAction, AskingSendsNothing) {
    Profile("Feed = FF");
    EXPECT_EQ(Perform(4, 0), S_OK);
    EXPECT_TRUE(Supported());
    EXPECT_FALSE(Displays());
    EXPECT_EQ(Perform(3, 0), S_OK); // no such entry
    EXPECT_FALSE(Supported());
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, EveryNonZeroFlagExecutes) {
    Profile("Feed = FF");
    for (const int flag : {1, -1, 2, -32'768}) {
        SCOPED_TRACE(flag);
        spooler.printed.clear();
        EXPECT_EQ(Perform(4, static_cast<VARIANT_BOOL>(flag)), S_OK);
        EXPECT_EQ(spooler.printed, "\x0C");
    }
}

TEST_F(PerformAction, WithoutProfileOrEntryNothingIsSupported) {
    for (const VARIANT_BOOL execute : {VARIANT_BOOL(0), VARIANT_BOOL(1)}) {
        for (const auto& row : kByteActions) {
            EXPECT_EQ(Perform(row.code, execute), S_OK);
            EXPECT_FALSE(Supported());
            EXPECT_FALSE(Displays());
        }
    }
    Profile("Cut = FF");
    EXPECT_EQ(Perform(4, 1), S_OK);
    EXPECT_FALSE(Supported());
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, WhatTheSpoolerHasNothingForIsNotSupported) {
    // Caches, memory, radio tags, information and commands of the device; a code that is nobody's.
    for (const LONG code : {5, 6, 11, 30, 13, 15, 16, 12, 0, -1, 99}) {
        for (const VARIANT_BOOL execute : {VARIANT_BOOL(0), VARIANT_BOOL(1)}) {
            SCOPED_TRACE(code);
            EXPECT_EQ(Perform(code, execute), S_OK);
            EXPECT_FALSE(Supported());
            EXPECT_FALSE(Displays());
        }
    }
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, TheSystemsDialogsAreShownAndSaidToBeDialogs) {
    for (const LONG code : {17, 14}) {
        EXPECT_EQ(Perform(code, 0), S_OK);
        EXPECT_TRUE(Supported());
        EXPECT_TRUE(Displays());
    }
    EXPECT_TRUE(Untouched());
    for (const LONG code : {17, 14}) {
        EXPECT_EQ(Perform(code, 1), S_OK);
        EXPECT_TRUE(Supported());
        EXPECT_TRUE(Displays());
    }
    EXPECT_EQ(spooler.journal, (std::vector<std::wstring>{L"properties of Label A", L"queue of Label A"}));
}

TEST_F(PerformAction, PropertiesMayBeChangedByAdministratorsAndLookedAtByOthers) {
    spooler.rights = PRINTER_ACCESS_USE;
    EXPECT_EQ(Perform(17, 1), S_OK);
    EXPECT_EQ(spooler.journal, std::vector<std::wstring>{L"properties to look at of Label A"});
    // A dialog that is refused is not shown a second time.
    spooler.rights |= PRINTER_ACCESS_ADMINISTER;
    spooler.failing = FakeSpooler::Call::ShowProperties;
    spooler.failure = ERROR_ACCESS_DENIED;
    spooler.accesses.clear();
    EXPECT_EQ(Perform(17, 1), E_ACCESSDENIED);
    EXPECT_EQ(spooler.accesses.size(), 1u);
}

TEST_F(PerformAction, NoDialogIsShownWhereNobodyWouldSeeIt) {
    spooler.desktop.visible = false;
    for (const auto& [code, word] : {std::pair(17, L"ConfigurePrinter"), {14, L"StatusMonitoring"}}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(Perform(code, 0), S_OK);
        EXPECT_FALSE(Supported());
        EXPECT_FALSE(Displays());
        EXPECT_EQ(Perform(code, 1), HRESULT_FROM_WIN32(ERROR_REQUIRES_INTERACTIVE_WINDOWSTATION));
        EXPECT_TRUE(BeginsWith(TakeErrorTexts().description,
                               std::wstring(L"PerformAction on printer \"Label A\": the dialog of action ") +
                                   word + L" cannot be shown without an interactive desktop: "));
        EXPECT_FALSE(Supported());
    }
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, ADialogThatFailsIsReported) {
    spooler.failing = FakeSpooler::Call::ShowProperties;
    spooler.failure = ERROR_CALL_NOT_IMPLEMENTED;
    EXPECT_EQ(Perform(17, 1), HRESULT_FROM_WIN32(ERROR_CALL_NOT_IMPLEMENTED));
    EXPECT_TRUE(BeginsWith(TakeErrorTexts().description, L"PerformAction on printer \"Label A\": showing the "
                                                         L"dialog of action ConfigurePrinter failed: "));
}

TEST_F(PerformAction, AFailedActionLeavesNoJobAndNoOldAnswer) {
    Profile("Feed = FF");
    EXPECT_EQ(Perform(4, 1), S_OK);
    EXPECT_TRUE(Supported());
    spooler.failing = FakeSpooler::Call::EndDocument;
    spooler.journal.clear();
    EXPECT_EQ(Perform(4, 1), HRESULT_FROM_WIN32(ERROR_PRINT_CANCELLED));
    EXPECT_EQ(spooler.journal.back(), L"deleted");
    EXPECT_FALSE(Supported());
}

TEST_F(PerformAction, ADamagedProfileIsRefusedEvenWhenOnlyAsked) {
    Profile("Feed = FF\nBogus = FF");
    for (const VARIANT_BOOL execute : {VARIANT_BOOL(0), VARIANT_BOOL(1)}) {
        EXPECT_EQ(Perform(4, execute), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
        EXPECT_EQ(TakeErrorTexts().description,
                  L"PerformAction on printer \"Label A\": action profile \"" + folder.Path() +
                      L"\\Zippy 300.profile\", line 2: no action of a profile is called \"Bogus\"");
        EXPECT_FALSE(Supported());
    }
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, WhatIsNoRequestOfThisServerIsRefused) {
    Profile("Feed = FF");
    VARIANT number = {};
    number.vt = VT_I4;
    number.lVal = 1;
    VARIANT text = {};
    text.vt = VT_BSTR;
    const InText word(L"Feed");
    text.bstrVal = word;
    VARIANT unknown = Argument(automation.Get());
    unknown.vt = VT_UNKNOWN;
    VARIANT noUnknown = Argument(nullptr);
    noUnknown.vt = VT_UNKNOWN;
    VARIANT other = Argument(automation.Get());
    VARIANT nested = Reference(other);
    IDispatch* none = nullptr;
    IDispatch* object = automation.Get();
    VARIANT inner = Reference(VT_DISPATCH, &object);
    VARIANT request2 = Argument(request.Get());
    VARIANT twice = Reference(request2);
    const VARIANT rows[] = {{},
                            number,
                            text,
                            Argument(nullptr),
                            noUnknown,
                            Argument(automation.Get()),
                            unknown,
                            Reference(number),
                            Reference(other),
                            Reference(nested),
                            Reference(twice), // a reference to a reference
                            Reference(inner),
                            Reference(VT_VARIANT, nullptr),
                            Reference(VT_DISPATCH, nullptr),
                            Reference(VT_DISPATCH, &none),
                            Reference(VT_UNKNOWN, &none),
                            Reference(VT_DISPATCH, &object),
                            Reference(VT_I4, &number.lVal)};
    for (const VARIANT& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(automation->PerformAction(4, row), E_INVALIDARG);
        EXPECT_EQ(
            TakeErrorTexts().description,
            L"PerformAction on printer \"Label A\": the request is no DriverActions object of this server");
    }
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(ReferencesTo(*automation), 1u); // none has been kept
    EXPECT_EQ(ReferencesTo(*request), 1u);
}

TEST_F(PerformAction, ARequestMayComeAsAnyKindOfObjectAndByReference) {
    Profile("Feed = FF");
    request->PutExecute(1);
    VARIANT plain = Argument(request.Get());
    VARIANT unknown = plain;
    unknown.vt = VT_UNKNOWN;
    unknown.punkVal = static_cast<ISupportErrorInfo*>(request.Get()); // any interface of the object will do
    IDispatch* dispatch = request.Get();
    IUnknown* other = unknown.punkVal;
    VARIANT inner = Reference(VT_DISPATCH, &dispatch);
    const VARIANT rows[] = {plain,
                            unknown,
                            Reference(plain),
                            Reference(unknown),
                            Reference(VT_DISPATCH, &dispatch),
                            Reference(VT_UNKNOWN, &other),
                            Reference(inner)};
    for (const VARIANT& row : rows) {
        SCOPED_TRACE(&row - rows);
        spooler.printed.clear();
        EXPECT_EQ(automation->PerformAction(4, row), S_OK);
        EXPECT_EQ(spooler.printed, "\x0C");
        EXPECT_EQ(ReferencesTo(*request), 1u); // none has been kept
    }
}

TEST_F(PerformAction, AFreshRequestKnowsNothingAndAsksOnly) {
    EXPECT_FALSE(Supported());
    EXPECT_FALSE(Displays());
    EXPECT_EQ(request->GetSupported(nullptr), E_POINTER);
    EXPECT_EQ(request->GetDisplaysInterface(nullptr), E_POINTER);
    Profile("Feed = FF");
    EXPECT_EQ(automation->PerformAction(4, Argument(request.Get())), S_OK);
    EXPECT_TRUE(Supported());
    EXPECT_TRUE(Untouched());
}

TEST_F(PerformAction, NothingIsDoneBeforeBinding) {
    request->PutExecute(1);
    EXPECT_EQ(MakeAutomation()->PerformAction(17, Argument(request.Get())), E_UNEXPECTED);
    EXPECT_TRUE(Untouched());
}

} // namespace
