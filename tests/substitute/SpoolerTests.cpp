// The objects on the system's own spooler.
#include <gtest/gtest.h>

#include "ObjectFixture.h"
#include "demo/LabelDriver.h"
#include "demo/WinePrinters.h"

namespace {

using namespace kemba::substitute;

class SpoolerTest : public ObjectFixture {
  protected:
    Held<DriverAutomationObject> MakeReal() { return Make<DriverAutomationObject>(realContext); }

    WindowsPrinterApi realSpooler;
    ServerContext realContext{realSpooler, dialogs, profiles, process, types};
};

TEST_F(SpoolerTest, ReadsARealPrinter) {
    const demo::Printer printer(
        {.comment = L"by the d\x00F6\x00F6r", .location = L"Hall", .shareName = L"LABELREAL"});
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetComment, text), S_OK);
    EXPECT_EQ(text, L"by the d\x00F6\x00F6r");
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetLocation, text), S_OK);
    EXPECT_EQ(text, L"Hall");
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetShareName, text), S_OK);
    EXPECT_EQ(text, L"LABELREAL");
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetPortName, text), S_OK);
    EXPECT_EQ(text, L"LPT1:");
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetModelName, text), S_OK);
    EXPECT_EQ(text, demo::kLabelDriver);
    IPrinterInformation* made = nullptr;
    ASSERT_EQ(automation->GetPrinterInformation(&made), S_OK);
    const Held<IPrinterInformation> information(made);
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, text), S_OK);
    EXPECT_EQ(text, L"Ready");
}

TEST_F(SpoolerTest, APrinterThatIsNotSharedHasNoShareName) {
    const demo::Printer printer;
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetShareName, text), S_OK);
    EXPECT_EQ(text, L"");
}

TEST_F(SpoolerTest, RefusesAPrinterThatIsNotThere) {
    const auto automation = MakeReal();
    EXPECT_EQ(automation->PutPrinterName(InText(L"No such printer")),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(
        TakeErrorTexts().description.find(L"PutPrinterName: opening printer \"No such printer\" failed: "),
        0u);
}

} // namespace
