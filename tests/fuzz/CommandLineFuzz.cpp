// Command lines through the option parser, the dispatcher and the printer selection; commands and printers
// are made up.
#include <windows.h>

#include <winspool.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/Dispatcher.h"
#include "cli/OptionParser.h"
#include "tests/core/SystemCallsPreset.h"
#include "tests/fuzz/CommandLineModel.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/TextModel.h"

namespace {

using fuzz::Case;
using fuzz::ParsedModel;
using fuzz::Words;
using kemba::ApplicationSettings;
using kemba::Command_Base;
using kemba::CommandRow;
using kemba::MakeCommand;

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

/// The made-up printers, and what the commands leave behind.
struct World {
    DWORD platform = VER_PLATFORM_WIN32_NT;
    DWORD major = 10;
    bool enumerates = true;
    Words printers;
    std::wstring defaultPrinter;
    Words done; // arguments of "record", printers of "loop"
};
World* g_world;

class Recording : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Run() override {
        g_world->done.assign(GetArguments().begin(), GetArguments().end());
        return g_world->done.size() % 2 == 0;
    }
};

/// Fails at a printer with an "f" in its name, throws at one with an "x".
class Looping : public Command_Base {
  public:
    using Command_Base::Command_Base;
    bool Execute(const OString& printer) override {
        g_world->done.emplace_back(printer.Wide());
        if (printer.Find(L'x') >= 0) {
            throw 1;
        }
        return printer.Find(L'f') < 0;
    }
};

constexpr CommandRow kTable[] = {{L"record", MakeCommand<Recording>},
                                 {L"loop", MakeCommand<Looping>},
                                 {L"base", MakeCommand<Command_Base>},
                                 {L"?", MakeCommand<Recording>}};

BOOL WINAPI EnumMade(DWORD, LPWSTR, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed, LPDWORD count) {
    const fuzz::OrdinaryHeap ordinary;
    const Words names = level == 5 ? Words(g_world->defaultPrinter.empty() ? 0 : 1, g_world->defaultPrinter)
                                   : g_world->printers;
    const std::size_t entry = level == 5 ? sizeof(PRINTER_INFO_5W) : sizeof(PRINTER_INFO_1W);
    std::size_t wanted = names.size() * entry;
    for (const std::wstring& name : names) {
        wanted += (name.size() + 1) * sizeof(wchar_t);
    }
    *needed = static_cast<DWORD>(wanted);
    *count = 0;
    if (size < wanted) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (buffer && !g_world->enumerates) {
        return FALSE;
    }
    auto* text = reinterpret_cast<wchar_t*>(buffer + names.size() * entry);
    for (const std::wstring& name : names) {
        BYTE* const at = buffer + *count * entry;
        (level == 5 ? reinterpret_cast<PRINTER_INFO_5W*>(at)->pPrinterName
                    : reinterpret_cast<PRINTER_INFO_1W*>(at)->pName) = text;
        text[name.copy(text, name.size())] = 0;
        text += name.size() + 1;
        ++*count;
    }
    return TRUE;
}

BOOL WINAPI GetMadeDefault(LPWSTR buffer, LPDWORD size) {
    const std::wstring& name = g_world->defaultPrinter;
    const auto wanted = static_cast<DWORD>(name.size() + 1);
    const bool fits = buffer && *size >= wanted;
    *size = wanted;
    if (name.empty() || !fits) {
        SetLastError(name.empty() ? ERROR_FILE_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    buffer[name.copy(buffer, name.size())] = 0;
    return TRUE;
}

DWORD WINAPI GetMadeProfile(LPCWSTR, LPCWSTR, LPCWSTR, LPWSTR buffer, DWORD size) {
    const std::wstring line =
        g_world->defaultPrinter.empty() ? L"" : g_world->defaultPrinter + L",driver,port";
    const std::size_t length = line.copy(buffer, size - 1);
    buffer[length] = 0;
    return static_cast<DWORD>(length);
}

BOOL WINAPI GetMadeVersion(OSVERSIONINFOW* version) {
    version->dwPlatformId = g_world->platform;
    version->dwMajorVersion = g_world->major;
    return TRUE;
}

World DrawWorld(Case& input) {
    const fuzz::OrdinaryHeap ordinary;
    World world;
    world.platform = static_cast<DWORD>(input.OnceIn(4) ? input.Below(4) : VER_PLATFORM_WIN32_NT);
    world.major = static_cast<DWORD>(input.OnceIn(4) ? 4 : 5 + input.Below(6));
    world.enumerates = !input.OnceIn(8);
    for (std::size_t left = input.Length(5); left > 0; --left) {
        world.printers.push_back(L"p" + input.WideText(40));
    }
    world.defaultPrinter = input.OnceIn(4) ? L"" : L"d" + input.Name(40);
    return world;
}

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
    void Print(const std::wstring& line) { output += fuzz::NarrowOf(line, fuzz::kAnsi) + "\r\n"; }

    bool Dispatch() {
        if (m_parsed.left.empty()) {
            Print(L"Error: No command specified.");
            return false;
        }
        const std::wstring& word = m_parsed.left.front();
        if (fuzz::IsSameWord(word, L"record") || word == L"?") {
            done.assign(m_parsed.left.begin() + 1, m_parsed.left.end());
            return done.size() % 2 == 0;
        }
        if (fuzz::IsSameWord(word, L"loop") || fuzz::IsSameWord(word, L"base")) {
            return Loop(fuzz::IsSameWord(word, L"loop"));
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
    const fuzz::AlignedBlocks aligned; // for the spooler's records
    World world = DrawWorld(input);
    g_world = &world;
    Words words = fuzz::DrawWords(input, {L"record", L"loop", L"loop", L"base", L"get"});
    // The spooler itself is asked for each printer named to a loop, which is slow.
    ParsedModel expected = fuzz::ParsedByModel(words);
    if (expected.printers.size() > 2 && !input.OnceIn(50)) {
        words = {L"record", L"/p", L"one", L"two"};
        expected = fuzz::ParsedByModel(words);
    }
    input.Say([&] {
        return "words " + fuzz::Literal(words) + ", printers " + fuzz::Literal(world.printers) +
               ", default printer " + fuzz::Literal(std::wstring_view(world.defaultPrinter)) + ", platform " +
               std::to_string(world.platform) + ", version " + std::to_string(world.major) +
               (world.enumerates ? "" : ", enumerating fails");
    });
    const SystemCallsPreset calls;
    calls->enumPrinters = &EnumMade;
    calls->getDefaultPrinter = &GetMadeDefault;
    calls->getProfileString = &GetMadeProfile;
    calls->getVersionEx = &GetMadeVersion;

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
    EXPECT_EQ(world.done, wanted.done);
}

} // namespace
