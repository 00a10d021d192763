// Activation, binding and calls against the scripted server, through the system's own activation.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "automation/Owners.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/ServerState.h"

using namespace kemba;
using namespace kit;

namespace {

/// The failure of `work`, as a test looks at it.
struct Failure {
    HRESULT status = S_OK;
    bool hasInformation = false;
    std::wstring source;
    std::wstring description;
};

Failure FailureOf(const std::function<void()>& work) {
    Failure failure;
    try {
        work();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ComError& error) {
        failure.status = error.Status();
        if (IErrorInfo* const information = error.Information()) {
            failure.hasInformation = true;
            OwnedBstr text;
            information->GetSource(text.Put());
            failure.source = text.Text();
            information->GetDescription(text.Put());
            failure.description = text.Text();
        }
    }
    return failure;
}

/// Every test leaves the server with nothing alive and nothing unfreed.
class Activation : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(server.Faults(), Lines{}); }

    FakeServer server;
};

TEST_F(Activation, CreatesRunsAndAsksForTheInterfaceInThisOrder) {
    {
        const auto automation = Activate<DriverAutomation, IDriverAutomation>();
        EXPECT_TRUE(automation);
    }
    EXPECT_EQ(server.Journal(),
              (Lines{"new DriverAutomation#1", "DriverAutomation#1.Run()",
                     "DriverAutomation#1.QueryInterface(IDriverAutomation)", "~DriverAutomation#1"}));
}

TEST_F(Activation, ReachesAllThreeClasses) {
    EXPECT_TRUE((Activate<DriverAutomation, IDriverAutomation>()));
    EXPECT_TRUE((Activate<DriverActions, IDriverActions>()));
    EXPECT_TRUE((Activate<VersionInformation, IVersionInformation>()));
}

TEST_F(Activation, AMissingClassIsTheCreationStatusWithoutInformation) {
    server.Unregister(FakeClass::DriverAutomation);
    const Failure failure = FailureOf([] { Activate<DriverAutomation, IDriverAutomation>(); });
    EXPECT_EQ(failure.status, REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(failure.hasInformation);
}

TEST_F(Activation, AFailedCreationIsItsStatus) {
    server.FailActivation(FakeClass::DriverAutomation, E_ACCESSDENIED);
    EXPECT_EQ(FailureOf([] { Activate<DriverAutomation, IDriverAutomation>(); }).status, E_ACCESSDENIED);
}

TEST_F(Activation, AnObjectThatCannotRunIsReleasedAndItsStatusRaised) {
    server.FailRun(FakeClass::DriverAutomation, E_ABORT);
    EXPECT_EQ(FailureOf([] { Activate<DriverAutomation, IDriverAutomation>(); }).status, E_ABORT);
    EXPECT_EQ(server.Journal().back(), "~DriverAutomation#1");
}

TEST_F(Activation, AMissingInterfaceIsToleratedWhicheverStepReportsIt) {
    server.LackInterface(FakeClass::DriverAutomation);
    EXPECT_FALSE((Activate<DriverAutomation, IDriverAutomation>()));
    server.FailActivation(FakeClass::DriverActions, E_NOINTERFACE);
    EXPECT_FALSE((Activate<DriverActions, IDriverActions>()));
    server.FailRun(FakeClass::VersionInformation, E_NOINTERFACE);
    EXPECT_FALSE((Activate<VersionInformation, IVersionInformation>()));
}

TEST_F(Activation, AMissingInterfaceBecomesAnInvalidPointerAtTheFirstCall) {
    server.LackInterface(FakeClass::DriverAutomation);
    const Failure failure = FailureOf([] { ActivateForPrinter(L"Label A"); });
    EXPECT_EQ(failure.status, E_POINTER);
    EXPECT_FALSE(failure.hasInformation);
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Activation, ASuccessWithoutAnObjectBecomesAnInvalidPointerAtTheFirstCall) {
    server.FailActivation(FakeClass::DriverAutomation, S_OK);
    EXPECT_FALSE((Activate<DriverAutomation, IDriverAutomation>()));
    EXPECT_EQ(FailureOf([] { ActivateForPrinter(L"Label A"); }).status, E_POINTER);
    EXPECT_EQ(server.Calls(), Lines{});
}

TEST_F(Activation, TwoPrintersAreTwoObjectsEachBoundOnce) {
    ActivateForPrinter(L"Label A");
    ActivateForPrinter(L"Label B");
    EXPECT_EQ(server.Calls(), (Lines{"DriverAutomation#1.PutPrinterName(\"Label A\")",
                                     "DriverAutomation#2.PutPrinterName(\"Label B\")"}));
}

TEST_F(Activation, ARefusedBindingReleasesTheObject) {
    server.Fail("IDriverAutomation.PutPrinterName", E_INVALIDARG);
    EXPECT_EQ(FailureOf([] { ActivateForPrinter(L"Label A"); }).status, E_INVALIDARG);
}

TEST_F(Activation, AFailedCallCarriesTheServersInformation) {
    server.Fail("IDriverAutomation.GetComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    const Failure failure =
        FailureOf([] { CallForText(ActivateForPrinter(L"Label A"), &IDriverAutomation::GetComment); });
    EXPECT_EQ(failure.status, E_FAIL);
    EXPECT_EQ(failure.source, L"Driver");
    EXPECT_EQ(failure.description, L"Out of paper");
}

TEST_F(Activation, InformationIsTakenOnlyFromAnObjectThatSupportsItForTheInterface) {
    server.Fail("IDriverAutomation.GetComment", E_FAIL).WithInformation(L"Driver", L"Out of paper");
    for (const auto support : {ErrorInfoSupport::No, ErrorInfoSupport::Absent}) {
        server.SupportErrorInfo(support);
        const Failure failure =
            FailureOf([] { CallForText(ActivateForPrinter(L"Label A"), &IDriverAutomation::GetComment); });
        EXPECT_EQ(failure.status, E_FAIL);
        EXPECT_FALSE(failure.hasInformation);
        SetErrorInfo(0, nullptr);
    }
}

TEST_F(Activation, AnObjectThatSupportsInformationMayHaveNone) {
    server.Fail("IDriverAutomation.GetComment", E_FAIL);
    const Failure failure =
        FailureOf([] { CallForText(ActivateForPrinter(L"Label A"), &IDriverAutomation::GetComment); });
    EXPECT_EQ(failure.status, E_FAIL);
    EXPECT_FALSE(failure.hasInformation);
}

TEST_F(Activation, ANullTextCountsAsEmpty) {
    server.GiveNull("IDriverAutomation.GetComment");
    EXPECT_TRUE(CallForText(ActivateForPrinter(L"Label A"), &IDriverAutomation::GetComment).IsEmpty());
}

TEST_F(Activation, ANullSubObjectIsAnInvalidPointerWhereItIsUsed) {
    server.GiveNull("IDriverAutomation.GetPrinterInformation");
    const auto automation = ActivateForPrinter(L"Label A");
    const auto information = CallForObject(automation, &IDriverAutomation::GetPrinterInformation);
    EXPECT_FALSE(information);
    EXPECT_EQ(FailureOf([&] { CallForText(information, &IPrinterInformation::GetStatus); }).status,
              E_POINTER);
}

TEST_F(Activation, SuccessOtherThanOkIsNoFailure) {
    server.Fail("IDriverAutomation.PutComment", S_FALSE);
    const auto automation = ActivateForPrinter(L"Label A");
    EXPECT_NO_THROW(CallWithText(automation, &IDriverAutomation::PutComment, L"x"));
}

TEST_F(Activation, ArgumentsArriveAsTheyAre) {
    const auto automation = ActivateForPrinter(L"Label A");
    const auto settings = CallForObject(automation, &IDriverAutomation::GetSettings);
    Call(settings, &IDriverSettings::ResetSettings, OwnedVariant::Omitted().Get());
    const auto request = Activate<DriverActions, IDriverActions>();
    Call(request, &IDriverActions::PutExecute, static_cast<VARIANT_BOOL>(1));
    Call(automation, &IDriverAutomation::PerformAction, 30L, OwnedVariant(request.Get()).Get());
    Call(automation, &IDriverAutomation::SendFile, kemba::TextArgument(L"a.prn").Get(),
         kemba::TextArgument(L"").Get());
    EXPECT_EQ(server.Calls(),
              (Lines{"DriverAutomation#1.PutPrinterName(\"Label A\")", "DriverAutomation#1.GetSettings()",
                     "DriverSettings#1.ResetSettings(VT_ERROR:0x80020004)", "DriverActions#1.PutExecute(1)",
                     "DriverAutomation#1.PerformAction(30, VT_DISPATCH:DriverActions#1)",
                     "DriverAutomation#1.SendFile(\"a.prn\", \"\")"}));
}

TEST(TextArgument, ATextThatCannotBeAllocatedIsOutOfMemory) {
    try {
        kemba::TextArgument(std::wstring_view(L"", 0x7FFFFFFF)); // more than a BSTR can count, and never read
        FAIL() << "allocated";
    } catch (const kemba::ComError& error) {
        EXPECT_EQ(error.Status(), E_OUTOFMEMORY);
        EXPECT_EQ(error.Information(), nullptr);
    }
}

} // namespace
