// The command base: defaults, lifetime of the component object runtime, and the loop over the printers.
#include <objbase.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "automation/ComError.h"
#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "demo/Printers.h"
#include "tests/cli/Console.h"

using namespace kemba;
using namespace kit;

namespace {

static_assert(std::has_virtual_destructor_v<Command_Base>);

/// Runs a step of the test's for each printer, and records whom it was called for.
class Probe : public Command_Base {
  public:
    using Command_Base::Command_Base;

    bool Execute(const OString& printerName) override {
        executed.emplace_back(printerName.Wide());
        return step(printerName);
    }
    OString GetName() const override { return L"Probe"; }
    const Arguments& TheArguments() const { return GetArguments(); }

    std::vector<std::wstring> executed;
    std::function<bool(const OString&)> step = [](const OString&) { return true; };
};

/// Whether the thread is in an apartment, of whatever kind.
bool RuntimeIsInitialised() {
    const HRESULT status = CoInitialize(nullptr);
    if (SUCCEEDED(status)) {
        CoUninitialize();
    }
    return status != S_OK;
}

/// A probe over two printers.
struct CommandBase : testing::Test {
    CommandBase() {
        OCore::RequireMemory(settings.printerNames.Append(first.Name().c_str()));
        OCore::RequireMemory(settings.printerNames.Append(second.Name().c_str()));
    }

    const demo::Printer first;
    const demo::Printer second;
    ApplicationSettings settings;
    CapturedConsole console;
    Probe probe{settings, console, {}};
    const std::string processing = "Executing 'Probe' command.\r\n";
    const std::string finished = "Finished processing command.\r\n";
};

TEST_F(CommandBase, TheDefaultsAreFixedTexts) {
    Command_Base base(settings, console, {});
    base.ShowHelp();
    EXPECT_FALSE(base.Execute(L"any"));
    EXPECT_STREQ(base.GetName().Wide(), L"Command Base");
    EXPECT_EQ(console.Output(), "Help not implemented!\r\nCommand not implemented!\r\n");
}

TEST_F(CommandBase, RunsOverAllPrintersBetweenItsTwoLines) {
    EXPECT_TRUE(probe.Run());
    EXPECT_EQ(probe.executed, (std::vector<std::wstring>{first.Name(), second.Name()}));
    EXPECT_EQ(console.Output(), processing + finished);
}

TEST_F(CommandBase, StopsAtThePrinterThatFails) {
    probe.step = [](const OString&) { return false; };
    EXPECT_FALSE(probe.Run());
    EXPECT_EQ(probe.executed, std::vector<std::wstring>{first.Name()});
    EXPECT_EQ(console.Output(), processing + finished);
}

TEST_F(CommandBase, AnyExceptionCountsAsAFailure) {
    const std::function<void()> throwers[] = {
        [] { throw kemba::ComError(E_FAIL); },
        [] { throw L"error:Unspecified"; },
        [] { throw 1; },
    };
    std::string expected;
    for (const auto& thrower : throwers) {
        probe.executed.clear();
        probe.step = [&](const OString&) {
            thrower();
            return true;
        };
        EXPECT_FALSE(probe.Run());
        EXPECT_EQ(probe.executed.size(), 1U);
        expected += processing + finished;
    }
    EXPECT_EQ(console.Output(), expected);
}

TEST_F(CommandBase, WithoutAPrinterNothingIsAnnounced) {
    settings.printerNames.RemoveAll();
    OCore::RequireMemory(settings.printerNames.Append(L"No such printer"));
    EXPECT_FALSE(probe.Run());
    EXPECT_EQ(probe.executed.size(), 0U);
    EXPECT_EQ(console.Output(),
              "The printer 'No such printer' is not found.\r\nNo printers selected for this operation.\r\n");
}

TEST_F(CommandBase, KeepsACopyOfTheArgumentList) {
    Arguments arguments{L"one", L"two"};
    const Probe command(settings, console, arguments);
    arguments.clear();
    EXPECT_EQ(command.TheArguments().size(), 2U);
    EXPECT_STREQ(command.TheArguments()[1], L"two");
}

TEST(CommandLifetime, TheRuntimeIsInitialisedWhileACommandLives) {
    const ApplicationSettings settings;
    CapturedConsole console;
    ASSERT_FALSE(RuntimeIsInitialised());
    {
        const Command_Base outer(settings, console, {});
        EXPECT_TRUE(RuntimeIsInitialised());
        {
            const Command_Base inner(settings, console, {});
        }
        EXPECT_TRUE(RuntimeIsInitialised()) << "a nested command undoes its own initialisation only";
    }
    EXPECT_FALSE(RuntimeIsInitialised());
}

TEST(CommandLifetime, TheApartmentIsSingleThreaded) {
    const ApplicationSettings settings;
    CapturedConsole console;
    const Command_Base command(settings, console, {});
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
}

TEST(CommandLifetime, AFailedInitialisationIsNotLookedAtAndUndoneAllTheSame) {
    // In a multithreaded apartment the command's own initialisation fails; its undoing then ends the
    // apartment.
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    const ApplicationSettings settings;
    CapturedConsole console;
    {
        const Command_Base command(settings, console, {});
    }
    EXPECT_FALSE(RuntimeIsInitialised());
}

} // namespace
