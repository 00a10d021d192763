// The entry point: exit status, the order of things, and failures that reach it.
#include <memory>
#include <string>

#include "cli/ApplicationSettings.h"
#include "cli/main/ProcessObjects.h"
#include "core/OEventLog.h"
#include "core/SystemCalls.h"
#include "messages/TextResource.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/SetAside.h"
#include "tests/whole_run/WholeRunTest.h"

using namespace kit;

namespace {

class EntryPoint : public WholeRunTest {
  protected:
    const std::string help = std::string(TextResource().GetText("help:help").Narrow()) + "\r\n";
};

TEST_F(EntryPoint, WithoutAWordTheGeneralHelpIsShownAndNoCommandMade) {
    const auto run = Run({});
    EXPECT_EQ(run.output, help);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(server.Journal(), Lines{}) << "the component runtime is not touched";
}

TEST_F(EntryPoint, AFailedOptionEndsWithoutAWord) {
    const auto run = Run({L"/p"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(server.Journal(), Lines{});
}

TEST_F(EntryPoint, OnlyOptionsAreNoCommand) {
    EXPECT_EQ(Run({L"/a"}).output, Output({"Error: No command specified."}));
    EXPECT_EQ(Run({L"/a"}).status, 2);
    const auto quiet = Run({L"/q"});
    EXPECT_EQ(quiet.output, "");
    EXPECT_EQ(quiet.status, 2);
}

TEST_F(EntryPoint, AnUnknownCommandIsReportedAsTyped) {
    for (const wchar_t* const word : {L"import", L"export", L"Bogus", L"", L"/x", L"gets", L"hel"}) {
        const auto run = Run({word, L"get", L"status"});
        EXPECT_EQ(run.output, Output({"The command '" + Printed(word) + "' is unknown."}));
        EXPECT_EQ(run.status, 2);
    }
}

TEST_F(EntryPoint, AnAutomationFailureThatEscapesIsPrintedAndEndsInSuccess) {
    server.Fail("IVersionInformation.GetVersion", static_cast<HRESULT>(0x80040201))
        .WithInformation(L"Driver", L"Out of paper");
    const auto run = Run({L"version"});
    EXPECT_EQ(run.output,
              Output({"*** COM Exception ***", "Error: IDispatch error #1", "Source: Driver", ""}));
    EXPECT_EQ(run.status, 0);
}

TEST_F(EntryPoint, QuietModeSilencesAnEscapedFailureToo) {
    server.Unregister(FakeClass::VersionInformation);
    const auto run = Run({L"/q", L"version"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 0);
}

TEST_F(EntryPoint, AFailureOfAnotherKindIsNotItsOwn) {
    server.Throw("IVersionInformation.GetVersion");
    EXPECT_ANY_THROW(Run({L"version"}));
}

TEST_F(EntryPoint, TheRuntimeIsInitialisedForTheCommandAlone) {
    Run({L"help"});
    EXPECT_EQ(server.Journal(), (Lines{"CoInitialize(2)", "CoUninitialize()"}));
}

TEST_F(EntryPoint, TheEventLogIsReplacedAndHeldByTheProcessAlone) {
    Run({});
    const std::weak_ptr<OEventLog> former = kemba::TheProcessObjects().eventLog;
    Run({});
    EXPECT_TRUE(former.expired());
    EXPECT_EQ(kemba::TheProcessObjects().eventLog.use_count(), 1);
    EXPECT_EQ(OEventLogBase::CountBases(), 1) << "both logs are of one source";
}

TEST_F(EntryPoint, ACommandLineCategoryThatIsSwitchedOnShowsNothing) {
    const RegistryPreset mask(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks",
                              L"Brandle KEMBA CLI");
    // Every look at the clock is six seconds later, so that every run reads the value again. Runs of other
    // tests write the value back as they read it: theirs may come between ours and the reading.
    const SystemCallsPreset calls;
    calls->getTickCount64 = [] {
        static ULONGLONG now = 0;
        return now += 6'000;
    };
    bool enabled = false;
    for (int attempt = 0; attempt < 20 && !enabled; ++attempt) {
        mask.Set(RegistryData::OfDword(0x10000000));
        EXPECT_EQ(Run({L"help"}).output, help);
        enabled = kemba::TheProcessObjects().eventLog->IsEnabled(0x10000000);
    }
    EXPECT_TRUE(enabled);
}

TEST_F(EntryPoint, TheOptionParserWorksOnTheProcessWideSettings) {
    Run({L"/a", L"/q", L"/p", L"A", L"help"});
    const kemba::ApplicationSettings& settings = kemba::TheProcessObjects().settings;
    EXPECT_TRUE(settings.allPrinters);
    EXPECT_TRUE(settings.quiet);
    ASSERT_EQ(settings.printerNames.GetSize(), 1);
    EXPECT_STREQ(settings.printerNames[0].Wide(), L"A");
}

} // namespace
