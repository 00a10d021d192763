// Command lines through the option parser, the dispatcher and the printer selection; commands and printers
// are made up.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/ApplicationSettings.h"
#include "cli/Command_Base.h"
#include "cli/Dispatcher.h"
#include "cli/OptionParser.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"
#include "tests/fuzz/CommandLineModel.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/fuzz/MadePrinters.h"
#include "tests/fuzz/TextModel.h"
#include "tests/kit/Printed.h"

using namespace kemba;
using namespace kit;

namespace {

/// A console that keeps what is written.
class Screen : public ConsoleOutput {
  public:
    explicit Screen(const bool& quiet) : ConsoleOutput(quiet), m_silent(&quiet) {}
    std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) override {
        if (!*m_silent) {
            m_written.append(static_cast<const char*>(bytes), count);
        }
        return count;
    }
    const std::string& GetWritten() const { return m_written; }

  private:
    const bool* m_silent;
    std::string m_written;
};

Words g_done; // arguments of "record", printers of "loop"

class Recording : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Run() override {
        g_done.assign(GetArguments().begin(), GetArguments().end());
        return g_done.size() % 2 == 0;
    }
};

/// Fails at a printer with an "f" in its name, throws at one with an "x".
class Looping : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Execute(const OString& printer) override {
        g_done.emplace_back(printer.Wide());
        if (printer.Find(L'x') >= 0) {
            throw 1;
        }
        return printer.Find(L'f') < 0;
    }
};

constexpr CommandRow kTable[] = {{L"record", nullptr, MakeCommand<Recording>},
                                 {L"loop", nullptr, MakeCommand<Looping>},
                                 {L"base", nullptr, MakeCommand<Command_Base>},
                                 {L"?", nullptr, MakeCommand<Recording>}};

/// What a command line is to come to.
class Expectation {
  public:
    Expectation(const ParsedModel& parsed, const World& world) : m_parsed(parsed), m_world(world) {
        result = Dispatch();
        if (m_parsed.quiet) {
            output.clear();
        }
    }

    bool result = false;
    std::string output;
    Words done;

  private:
    void Print(const std::wstring& line) { output += NarrowOf(line, kAnsi) + "\r\n"; }

    bool Dispatch() {
        if (m_parsed.left.empty()) {
            Print(L"Error: No command specified.");
            return false;
        }
        const std::wstring& word = m_parsed.left.front();
        if (IsSameWord(word, L"record") || word == L"?") {
            done.assign(m_parsed.left.begin() + 1, m_parsed.left.end());
            return done.size() % 2 == 0;
        }
        if (IsSameWord(word, L"loop") || IsSameWord(word, L"base")) {
            return Loop(IsSameWord(word, L"loop"));
        }
        Print(L"The command '" + word + L"' is unknown.");
        return false;
    }

    Words Selected() {
        if (m_parsed.all) {
            return m_world.enumerates ? m_world.printers : Words();
        }
        for (const std::wstring& name : m_parsed.printers) { // the spooler knows none of them
            Print(L"The printer '" + name + L"' is not found.");
        }
        const bool asksForDefault = m_parsed.printers.empty() && !m_world.defaultPrinter.empty();
        const bool modern = m_world.platform == 2;
        const bool old = m_world.platform == 1 && m_world.enumerates;
        return asksForDefault && (modern || old) ? Words{m_world.defaultPrinter} : Words();
    }

    bool Loop(bool counts) {
        const Words printers = Selected();
        if (printers.empty()) {
            Print(L"No printers selected for this operation.");
            return false;
        }
        Print(L"Executing 'Command Base' command.");
        bool good = true;
        for (auto name = printers.begin(); good && name != printers.end(); ++name) {
            if (counts) {
                done.push_back(*name);
            } else {
                Print(L"Command not implemented!");
            }
            good = counts && name->find_first_of(L"fx") == name->npos;
        }
        Print(L"Finished processing command.");
        return good;
    }

    const ParsedModel& m_parsed;
    const World& m_world;
};

FUZZ_TARGET(CommandLines, 300) {
    const AlignedBlocks aligned; // for the spooler's records
    const MadePrinters made(input);
    const World& world = made.GetWorld();
    g_done.clear();
    Words words = DrawWords(input, {L"record", L"loop", L"loop", L"base", L"get"});
    // The spooler itself is asked for each printer named to a loop, which is slow.
    ParsedModel expected = ParsedByModel(words);
    if (expected.printers.size() > 2 && !input.OnceIn(50)) {
        words = {L"record", L"/p", L"one", L"two"};
        expected = ParsedByModel(words);
    }
    input.Say([&] {
        return "words " + Literal(words) + ", printers " + Literal(world.printers) + ", default printer " +
               Literal(std::wstring_view(world.defaultPrinter)) + ", platform " +
               std::to_string(world.platform) + ", version " + std::to_string(world.major) +
               (world.enumerates ? "" : ", enumerating fails");
    });
    ApplicationSettings settings;
    OStringArray array;
    for (const std::wstring& word : words) {
        ASSERT_TRUE(array.Append(word.c_str()));
    }
    EXPECT_EQ(kemba::ParseOptions(settings, array), expected.goesOn);
    EXPECT_EQ(settings.allPrinters, expected.all);
    EXPECT_EQ(settings.quiet, expected.quiet);
    const auto same = [](const OString& text, const std::wstring& word) { return text.Wide() == word; };
    EXPECT_TRUE(std::equal(settings.printerNames.begin(), settings.printerNames.end(),
                           expected.printers.begin(), expected.printers.end(), same));
    if (!expected.goesOn) {
        return;
    }
    EXPECT_TRUE(std::equal(array.begin(), array.end(), expected.left.begin(), expected.left.end(), same));

    if (input.Number() % 16 != 0 && input.Number() > 1000) {
        return; // a command initialises the component runtime, and each message is looked up in the whole
                // catalogue
    }
    Screen screen(settings.quiet);
    const bool result = kemba::Dispatch(kTable, settings, screen, array);
    const Expectation wanted(expected, world);
    EXPECT_EQ(result, wanted.result);
    EXPECT_EQ(screen.GetWritten(), wanted.output);
    EXPECT_EQ(g_done, wanted.done);
    Words().swap(g_done); // no block is to be left
}

} // namespace
