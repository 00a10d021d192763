// Texts with a zero character inside: whatever reads up to the zero would take another text than the client
// gave.
#include <gtest/gtest.h>

#include <functional>

#include "automation/Owners.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;
using namespace std::string_literals;

namespace {

class EveryTextArgument : public ObjectFixture {
  protected:
    EveryTextArgument() {
        spooler.printers[L"Label A"].comment = L"by the door";
        spooler.printers[L"Label A"].location = L"Hall";
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
        EXPECT_EQ(automation->GetSettings(settings.Put()), S_OK);
        folder.Put(L"label.prn", "label");
    }

    TemporaryFolder folder;
    std::wstring path = folder.File(L"label.prn");
    ComPtr<DriverAutomationObject> automation = MakeAutomation();
    ComPtr<DriverAutomationObject> unbound = MakeAutomation();
    ComPtr<IDriverSettings> settings;
};

TEST_F(EveryTextArgument, AreRefusedByEveryOperation) {
    const InText file(path);
    const VARIANT all = LeftOut();
    const struct {
        const wchar_t* description;
        std::wstring good; ///< what would be taken if the text ended at its zero
        std::function<HRESULT(BSTR)> call;
    } rows[] = {
        {L"PutPrinterName: the printer's name", L"Label A",
         [&](BSTR text) { return unbound->PutPrinterName(text); }},
        {L"SendFile on printer \"Label A\": the path", path,
         [&](BSTR text) { return automation->SendFile(text, nullptr); }},
        {L"SendFile on printer \"Label A\": the document's name", L"job",
         [&](BSTR text) { return automation->SendFile(file, text); }},
        {L"PutShareName on printer \"Label A\": the share name", L"LABEL",
         [&](BSTR text) { return automation->PutShareName(text); }},
        {L"PutComment on printer \"Label A\": the comment", L"x",
         [&](BSTR text) { return automation->PutComment(text); }},
        {L"PutLocation on printer \"Label A\": the location", L"x",
         [&](BSTR text) { return automation->PutLocation(text); }},
        {L"ExportSettings on printer \"Label A\": the path", folder.File(L"x.vqs"),
         [&](BSTR text) { return settings->ExportSettings(text, all); }},
        {L"ImportSettings on printer \"Label A\": the path", path,
         [&](BSTR text) { return settings->ImportSettings(text, all); }},
    };
    const int opened = spooler.opened;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.description);
        for (const std::wstring& text :
             {row.good + L"\0.prn"s, row.good + L"\0"s, L"\0"s + row.good, L"\0"s}) {
            EXPECT_EQ(row.call(InText(text)), E_INVALIDARG);
            EXPECT_EQ(TakeErrorTexts().description,
                      std::wstring(row.description) + L" has a zero character in it");
        }
    }
    EXPECT_EQ(spooler.opened, opened); // nobody was asked for anything
    EXPECT_TRUE(spooler.journal.empty());
    EXPECT_EQ(spooler.printers[L"Label A"].comment, L"by the door");
    EXPECT_EQ(spooler.printers[L"Label A"].location, L"Hall");
    EXPECT_EQ(spooler.printers[L"Label A"].attributes, 0u);
    EXPECT_EQ(folder.Count(), 1);
    EXPECT_EQ(unbound->PutPrinterName(InText(L"Label A")), S_OK);
}

TEST_F(EveryTextArgument, AreRefusedFromScriptsToo) {
    const Value cut(path + L"\0.prn"s);
    const Value name(L"job");
    Value variable(path + L"\0.prn"s);
    for (const VARIANT& argument :
         {VARIANT(cut), Reference(variable), Reference(VT_BSTR, &variable.bstrVal)}) {
        SCOPED_TRACE(argument.vt);
        Told told;
        EXPECT_EQ(Call(*automation, L"SendFile", {argument, name}, nullptr, &told), DISP_E_EXCEPTION);
        EXPECT_EQ(told.exception.scode, E_INVALIDARG);
        EXPECT_EQ(told.Description(),
                  L"SendFile on printer \"Label A\": the path has a zero character in it");
    }
    EXPECT_TRUE(spooler.journal.empty());
    TakeErrorTexts();
}

} // namespace
