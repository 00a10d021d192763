// The objects on the system's own spooler.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "automation/Owners.h"
#include "demo/LabelDriver.h"
#include "demo/Printers.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/spooler/WindowsSpooler.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class RealSpooler : public ObjectFixture {
  protected:
    ComPtr<DriverAutomationObject> MakeReal() { return MakeObject<DriverAutomationObject>(realContext); }

    WindowsSpooler realSpooler;
    ServerContext realContext{realSpooler, locks, profiles, uses, types};
};

TEST_F(RealSpooler, ReadsARealPrinter) {
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
    EXPECT_EQ(text, demo::LabelDriverName());
    ComPtr<IPrinterInformation> information;
    ASSERT_EQ(automation->GetPrinterInformation(information.Put()), S_OK);
    EXPECT_EQ(ReadText(*information, &IPrinterInformation::GetStatus, text), S_OK);
    EXPECT_EQ(text, L"Ready");
}

TEST_F(RealSpooler, APrinterThatIsNotSharedHasNoShareName) {
    const demo::Printer printer;
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetShareName, text), S_OK);
    EXPECT_EQ(text, L"");
}

TEST_F(RealSpooler, RefusesAPrinterThatIsNotThere) {
    const auto automation = MakeReal();
    EXPECT_EQ(automation->PutPrinterName(InText(L"No such printer")),
              HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    EXPECT_EQ(
        TakeErrorTexts().description.find(L"PutPrinterName: opening printer \"No such printer\" failed: "),
        0u);
}

TEST_F(RealSpooler, ChangesARealPrinter) {
    const demo::Printer printer({.comment = L"old", .location = L"Hall", .shareName = L""});
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    EXPECT_EQ(automation->PutComment(InText(L"by the d\x00F6\x00F6r")), S_OK);
    EXPECT_EQ(automation->PutShareName(InText(L"LABELNEW")), S_OK);
    const auto read = [&](auto operation) {
        std::wstring text;
        EXPECT_EQ(ReadText<IDriverAutomation>(*automation, operation, text), S_OK);
        return text;
    };
    EXPECT_EQ(read(&IDriverAutomation::GetComment), L"by the d\x00F6\x00F6r");
    EXPECT_EQ(read(&IDriverAutomation::GetLocation), L"Hall");
    EXPECT_EQ(read(&IDriverAutomation::GetShareName), L"LABELNEW");
    EXPECT_EQ(read(&IDriverAutomation::GetPortName), L"LPT1:");
    EXPECT_EQ(read(&IDriverAutomation::GetModelName), demo::LabelDriverName());
    EXPECT_EQ(automation->PutLocation(InText(L"")), S_OK);
    EXPECT_EQ(automation->PutShareName(InText(L"")), S_OK);
    EXPECT_EQ(read(&IDriverAutomation::GetLocation), L"");
    EXPECT_EQ(read(&IDriverAutomation::GetShareName), L"");
    EXPECT_EQ(read(&IDriverAutomation::GetComment), L"by the d\x00F6\x00F6r");
}

// Wine's spooler has no queue commands.
TEST_F(RealSpooler, AQueueCommandThatTheSpoolerDoesNotKnowIsRefusedCleanly) {
    const demo::Printer printer;
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    ComPtr<IPrinterQueue> queue;
    ASSERT_EQ(automation->GetPrinterQueue(queue.Put()), S_OK);
    for (const auto operation : {&IPrinterQueue::Pause, &IPrinterQueue::Resume, &IPrinterQueue::Purge}) {
        EXPECT_EQ(((*queue).*operation)(), HRESULT_FROM_WIN32(ERROR_INVALID_LEVEL));
        EXPECT_NE(TakeErrorTexts().description.find(L"ing the queue failed: "), std::wstring::npos);
    }
}

TEST_F(RealSpooler, AFilesBytesArriveAtThePort) {
    const PrinterPort port;
    const demo::Printer printer({.port = port.Name()});
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::string bytes(200'001, '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<char>(index * 7 + index / 256);
    }
    const TemporaryFile file(bytes);
    EXPECT_EQ(automation->SendFile(InText(file.Path()), nullptr), S_OK);
    EXPECT_TRUE(port.Received(bytes.size()) == bytes);
}

TEST_F(RealSpooler, AnActionsBytesArriveAtThePort) {
    const TemporaryFolder folder;
    profileFolder = folder.Path();
    folder.Put(std::wstring(demo::LabelDriverName()) + L".profile", "Feed = NUL FF 0xFF");
    const PrinterPort port;
    const demo::Printer printer({.port = port.Name()});
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    const auto request = MakeObject<DriverActionsObject>(realContext);
    VARIANT argument = {};
    argument.vt = VT_DISPATCH;
    argument.pdispVal = request.Get();
    request->PutExecute(1);
    EXPECT_EQ(automation->PerformAction(4, argument), S_OK);
    EXPECT_EQ(port.Received(3), std::string("\0\x0C\xFF", 3));
}

// The driver was installed without a version, so that its file's counts.
TEST_F(RealSpooler, ARealDriversVersionIsThatOfItsFile) {
    const demo::Printer printer;
    const auto automation = MakeReal();
    ASSERT_EQ(automation->PutPrinterName(InText(printer.Name())), S_OK);
    std::wstring text;
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersion, text), S_OK);
    EXPECT_EQ(std::count(text.begin(), text.end(), L'.'), 3) << testing::PrintToString(text);
    EXPECT_EQ(ReadText<IDriverAutomation>(*automation, &IDriverAutomation::GetDriverVersionDetail, text),
              S_OK);
    EXPECT_EQ(text, L"");
}

} // namespace
