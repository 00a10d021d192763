// Scripts on the built server, those of the page on the server among them.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "Version.h"
#include "demo/Printers.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"

using namespace kit;

namespace {

enum class Language { VBScript, JScript, PowerShell };

std::string NameOf(Language language) {
    constexpr const char* kNames[] = {"VBScript", "JScript", "PowerShell"};
    return kNames[static_cast<int>(language)];
}

std::wstring FolderOf(UINT(WINAPI* get)(wchar_t*, UINT)) {
    wchar_t folder[MAX_PATH] = {};
    get(folder, MAX_PATH);
    return folder;
}

/// The program that runs scripts of a language, in a process of 64 or of 32 bits.
struct Host {
    Language language;
    bool is32Bit = false;

    std::wstring Path() const {
        return FolderOf(is32Bit ? GetSystemWow64DirectoryW : GetSystemDirectoryW) +
               (language == Language::PowerShell ? L"\\WindowsPowerShell\\v1.0\\powershell.exe"
                                                 : L"\\cscript.exe");
    }
};

/// Runs the script in a process of its own; the words are its arguments.
ProcessResult RunScript(const Host& host, const std::string& text, const std::vector<std::wstring>& words) {
    constexpr const wchar_t* kNames[] = {L"script.vbs", L"script.js", L"script.ps1"};
    const TemporaryFolder folder;
    const std::wstring name = kNames[static_cast<int>(host.language)];
    folder.Put(name, text);
    std::vector<std::wstring> all = {L"//nologo", folder.File(name)};
    if (host.language == Language::PowerShell) {
        all = {L"-NoProfile", L"-NonInteractive", L"-ExecutionPolicy",
               L"Bypass",     L"-File",           folder.File(name)};
    }
    all.insert(all.end(), words.begin(), words.end());
    return RunProgram(host.Path(), all);
}
ProcessResult RunScript(Language language, const std::string& text, const std::vector<std::wstring>& words) {
    return RunScript(Host{language}, text, words);
}

/// Why no such script can be run here, found out by trying; empty when it can.
std::string Lacking(const Host& host) {
    const std::filesystem::path path = host.Path();
    const std::string program = (host.is32Bit ? "32-bit " : "") + path.filename().string();
    if (!std::filesystem::exists(path)) {
        return "there is no " + program;
    }
    const char* const exitWithSeven = host.language == Language::PowerShell ? "exit 7" : "WScript.Quit 7";
    return RunScript(host, exitWithSeven, {}).status == 7 ? "" : program + " runs no script";
}

/// The first block of the page that is fenced as one of the language.
std::string ScriptOfThePage(const std::string& fence) {
    std::ifstream page("docs/automation-server.md"); // below the folder that tests are run in
    EXPECT_TRUE(page);
    std::string line;
    while (std::getline(page, line) && line != fence) {
    }
    std::string script;
    while (std::getline(page, line) && line != "```") {
        script += line + "\r\n";
    }
    return script;
}

/// Puts `by` in every place of `what`, of which there has to be one at least.
void Replace(std::string& text, const std::string& what, const std::string& by) {
    EXPECT_NE(text.find(what), std::string::npos) << what << " in " << text;
    for (auto place = text.find(what); place != std::string::npos;
         place = text.find(what, place + by.size())) {
        text.replace(place, what.size(), by);
    }
}

TEST(Script, TheVBScriptOfThePageDoesWhatItSays) {
    // The printer has the name of the sample's profile, which lies beside the server.
    const PrinterPort port;
    const demo::Printer printer(L"escpos-receipt", {.port = port.Name(), .comment = L"by the door"});
    const TemporaryFile file;
    std::string script = ScriptOfThePage("```vbscript");
    Replace(script, "Dock 1", Narrow(printer.Name()));
    Replace(script, "C:\\Labels\\dock.vqs", Narrow(file.Path()));
    const ProcessResult run = RunScript(Language::VBScript, script, {});
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, "by the door Ready\r\nfed: True\r\n");
    EXPECT_EQ(port.Received(3), "\x1B"
                                "d\x04");
    EXPECT_FALSE(file.Read().empty());
}

TEST(Script, TheJScriptOfThePageDoesWhatItSays) {
    const demo::Printer printer({.comment = L"by the door"});
    const TemporaryFile file;
    std::string path = Narrow(file.Path());
    Replace(path, "\\", "\\\\");
    std::string script = ScriptOfThePage("```javascript");
    Replace(script, "Dock 1", Narrow(printer.Name()));
    Replace(script, "C:\\\\Labels\\\\dock.vqs", path);
    const ProcessResult run = RunScript(Language::JScript, script, {});
    EXPECT_EQ(run.status, 0u);
    const std::string begin = "by the door\r\n800700a1 SendFile on printer \"" + Narrow(printer.Name()) +
                              "\": the file's path \"label.prn\" is not absolute: ";
    EXPECT_EQ(run.output.substr(0, begin.size()), begin);
    EXPECT_NE(run.output.find("(error 161)"), std::string::npos);
    EXPECT_FALSE(file.Read().empty());
}

TEST(Script, ThePowerShellOfThePageDoesWhatItSays) {
    if (const std::string lacking = Lacking({Language::PowerShell}); !lacking.empty()) {
        GTEST_SKIP() << lacking;
    }
    const demo::Printer printer({.comment = L"by the door"});
    const TemporaryFile file;
    std::string script = ScriptOfThePage("```powershell");
    Replace(script, "Dock 1", Narrow(printer.Name()));
    Replace(script, "C:\\Labels\\dock.vqs", Narrow(file.Path()));
    const ProcessResult run = RunScript(Language::PowerShell, script + "Write-Output $comment\r\n", {});
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, "by the door\r\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_FALSE(file.Read().empty());
}

/// Clients of either word size, late bound.
class ScriptHost : public testing::TestWithParam<Host> {
  protected:
    void SetUp() override {
        if (const std::string lacking = Lacking(GetParam()); !lacking.empty()) {
            GTEST_SKIP() << lacking;
        }
    }
    static bool IsPowerShell() { return GetParam().language == Language::PowerShell; }
};

TEST_P(ScriptHost, IsToldTheVersion) {
    const ProcessResult run =
        RunScript(GetParam(),
                  IsPowerShell() ? "$server = New-Object -ComObject Kemba.VersionInformation\r\n"
                                   "$version = ''\r\n"
                                   "$server.GetVersion([ref] $version)\r\n"
                                   "Write-Output $version\r\n"
                                 : "Set server = CreateObject(\"Kemba.VersionInformation\")\r\n"
                                   "server.GetVersion version\r\n"
                                   "WScript.Echo version\r\n",
                  {});
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, KEMBA_VERSION_TEXT "\r\n");
    EXPECT_EQ(run.errors, "");
}

TEST_P(ScriptHost, ReadsAndChangesAPrinter) {
    const demo::Printer printer({.comment = L"by the door"});
    const ProcessResult run =
        RunScript(GetParam(),
                  IsPowerShell() ? "$printer = New-Object -ComObject Kemba.DriverAutomation\r\n"
                                   "$printer.PutPrinterName($args[0])\r\n"
                                   "$comment = ''\r\n"
                                   "$printer.GetComment([ref] $comment)\r\n"
                                   "Write-Output $comment\r\n"
                                   "$printer.PutComment('at the window')\r\n"
                                   "$printer.GetComment([ref] $comment)\r\n"
                                   "Write-Output $comment\r\n"
                                 : "Set printer = CreateObject(\"Kemba.DriverAutomation\")\r\n"
                                   "printer.PutPrinterName WScript.Arguments(0)\r\n"
                                   "printer.GetComment comment\r\n"
                                   "WScript.Echo comment\r\n"
                                   "printer.PutComment \"at the window\"\r\n"
                                   "printer.GetComment comment\r\n"
                                   "WScript.Echo comment\r\n",
                  {printer.Name()});
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, "by the door\r\nat the window\r\n");
    EXPECT_EQ(run.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptHost,
                         testing::Values(Host{Language::VBScript}, Host{Language::VBScript, true},
                                         Host{Language::PowerShell}, Host{Language::PowerShell, true}),
                         [](const auto& row) {
                             return NameOf(row.param.language) + (row.param.is32Bit ? "32" : "64");
                         });

TEST(Script, EveryValueThatSaysNoneLeavesTheOptionOut) {
    const demo::Printer printer;
    const TemporaryFile file;
    const std::pair<Language, std::string> rows[] = {
        {Language::VBScript, "Set printer = CreateObject(\"Kemba.DriverAutomation\")\r\n"
                             "printer.PutPrinterName WScript.Arguments(0)\r\n"
                             "path = WScript.Arguments(1)\r\n"
                             "Set settings = printer.GetSettings\r\n"
                             "settings.ExportSettings path, Empty\r\n"
                             "settings.ExportSettings path, Null\r\n"
                             "settings.ExportSettings path, variable\r\n"
                             "settings.ResetSettings variable\r\n"
                             "WScript.Echo \"done\"\r\n"
                             "On Error Resume Next\r\n"
                             "settings.ResetSettings 1\r\n"
                             "WScript.Echo Hex(Err.Number), Err.Description\r\n"},
        {Language::JScript, "var printer = new ActiveXObject(\"Kemba.DriverAutomation\");\r\n"
                            "printer.PutPrinterName(WScript.Arguments(0));\r\n"
                            "var path = WScript.Arguments(1);\r\n"
                            "var settings = printer.GetSettings();\r\n"
                            "settings.ExportSettings(path, undefined);\r\n"
                            "settings.ExportSettings(path, null);\r\n"
                            "settings.ResetSettings(null);\r\n"
                            "WScript.Echo(\"done\");\r\n"
                            "try {\r\n"
                            "    settings.ResetSettings(1);\r\n"
                            "} catch (failure) {\r\n"
                            "    WScript.Echo((failure.number >>> 0).toString(16).toUpperCase(), "
                            "failure.description);\r\n"
                            "}\r\n"},
    };
    for (const auto& [language, script] : rows) {
        SCOPED_TRACE(NameOf(language));
        const ProcessResult run = RunScript(language, script, {printer.Name(), file.Path()});
        EXPECT_EQ(run.status, 0u);
        EXPECT_EQ(run.output, "done\r\n80070057 ResetSettings on printer \"" + Narrow(printer.Name()) +
                                  "\": the optional argument has to be omitted\r\n");
    }
}

TEST(Script, CallsThatDoNotFitAreRefusedAndChangeNothing) {
    const demo::Printer printer({.comment = L"by the door"});
    const std::string script = "Set printer = CreateObject(\"Kemba.DriverAutomation\")\r\n"
                               "printer.PutPrinterName WScript.Arguments(0)\r\n"
                               "On Error Resume Next\r\n"
                               "printer.PutComment \"one\", \"too many\"\r\n"
                               "WScript.Echo CStr(Err.Number <> 0)\r\n"
                               "Err.Clear\r\n"
                               "printer.PutComment\r\n"
                               "WScript.Echo CStr(Err.Number <> 0)\r\n"
                               "Err.Clear\r\n"
                               "printer.GetComment \"a value\"\r\n"
                               "WScript.Echo CStr(Err.Number <> 0)\r\n"
                               "Err.Clear\r\n"
                               "printer.PutComment \"cut\" & Chr(0) & \" off\"\r\n"
                               "WScript.Echo Hex(Err.Number), Err.Description\r\n"
                               "Err.Clear\r\n"
                               "printer.Reserved4\r\n"
                               "WScript.Echo Hex(Err.Number), Err.Description\r\n"
                               "WScript.Echo printer.GetComment()\r\n";
    const ProcessResult run = RunScript(Language::VBScript, script, {printer.Name()});
    const std::string on = " on printer \"" + Narrow(printer.Name()) + "\": ";
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, "True\r\nTrue\r\nTrue\r\n80070057 PutComment" + on +
                              "the comment has a zero character in it\r\n80004001 Reserved4" + on +
                              "this server does not offer the operation\r\nby the door\r\n");
}

} // namespace
