// Table of command lines.
#include "tests/shortage/CommandLines.h"

#include <vector>

namespace kit {
namespace {

using enum Handling;

/// Any file that is there.
constexpr wchar_t kFile[] = L"C:\\windows\\system32\\kernel32.dll";
constexpr wchar_t kOne[] = L"Dock 1";
constexpr wchar_t kTwo[] = L"Dock 2";

} // namespace

const std::vector<CommandLine>& AllCommandLines() {
    static const std::vector<CommandLine> lines = {
        {"NoWord", {}, 1, None},
        {"PrinterWithoutName", {L"get", L"status", L"/p"}, 1, None},
        {"QuestionMark", {L"get", L"/?"}, 0, None},
        {"Unknown", {L"frobnicate"}, 2, None},

        {"Help", {L"help"}, 0, None},
        {"HelpCommands", {L"help", L"commands"}, 0, None},
        {"HelpUsage", {L"?", L"usage"}, 0, None},
        {"HelpQueue", {L"help", L"queue"}, 0, None},
        {"HelpUnknown", {L"help", L"frobnicate"}, 0, None},

        {"Version", {L"/p", kOne, L"version"}, 0, Silent},
        {"VersionInterface", {L"version", L"interface"}, 0, None},
        {"VersionSystem", {L"version", L"os"}, 0, None},
        {"VersionDriver", {L"/a", L"version", L"driver"}, 0, Silent},
        {"VersionRefused", {L"version", L"interface"}, 0, None, "IVersionInformation.GetVersion=80070005+"},
        {"VersionRefusedByNumber",
         {L"version", L"interface"},
         0,
         None,
         "IVersionInformation.GetVersion=80040205"},

        {"GetComment", {L"/p", kTwo, L"get", L"comment"}, 0, Unspecified},
        {"GetLocation", {L"/p", kOne, L"/p", kTwo, L"get", L"location"}, 0, Unspecified},
        {"GetModelName", {L"/a", L"get", L"modelname"}, 0, Unspecified},
        {"GetPortName", {L"/p", kTwo, L"get", L"portname"}, 0, Unspecified},
        {"GetShareName", {L"/p", kTwo, L"get", L"sharename"}, 0, Unspecified},
        {"GetStatus", {L"/a", L"get", L"status"}, 0, Unspecified},
        {"GetNothing", {L"/p", kTwo, L"get"}, 2, Finished},
        {"GetUnknown", {L"/a", L"get", L"colour"}, 0, Either},
        {"GetFromDefaultPrinter", {L"get", L"comment"}, 0, Unspecified},
        {"GetFromUnknownPrinter", {L"/p", L"Nobody", L"get", L"comment"}, 2, None},
        {"GetFromUnknownAndKnownPrinter",
         {L"/p", L"Nobody", L"/p", kTwo, L"get", L"comment"},
         0,
         Unspecified},

        {"SetComment", {L"/p", kOne, L"/p", kTwo, L"set", L"comment", L"by the door"}, 0, Unspecified},
        {"SetLocation", {L"/p", kTwo, L"set", L"location", L"hall"}, 0, Unspecified},
        {"SetShareName", {L"/a", L"set", L"sharename", L"DOCK"}, 0, Unspecified},
        {"SetQuietly", {L"/q", L"/p", kTwo, L"set", L"comment", L"by the door"}, 0, Unspecified},

        {"QueuePause", {L"/p", kTwo, L"queue", L"pause"}, 0, Unspecified},
        {"QueueResume", {L"/a", L"queue", L"resume"}, 0, Unspecified},
        {"QueuePurge", {L"/p", kTwo, L"queue", L"purge"}, 0, Unspecified},
        {"QueueRefused", {L"/a", L"queue", L"purge"}, 0, Either, "IPrinterQueue.Purge=80004005+"},

        {"Send", {L"/p", kOne, L"/p", kTwo, L"send", kFile}, 0, Finished},
        {"SendMissingFile", {L"/p", kTwo, L"send", L"C:\\missing"}, 2, Finished},
        {"SendRefused", {L"/p", kTwo, L"send", kFile}, 0, Finished, "IDriverAutomation.SendFile=80070005"},

        {"ActionFeed", {L"/p", kTwo, L"action", L"Feed"}, 0, Either},
        {"ActionFeedQuery", {L"/a", L"action", L"-n", L"Feed"}, 0, Either},
        {"ActionUnknown", {L"/p", kTwo, L"action", L"Fly"}, 0, Either},

        {"SettingsImport", {L"/a", L"settings", L"import", kFile}, 0, Finished},
        {"SettingsExport", {L"/p", kTwo, L"settings", L"export", L"C:\\dock.vqs"}, 0, None},
        {"SettingsExportFromTwo", {L"/a", L"settings", L"export", L"C:\\dock.vqs"}, 2, None},
        {"SettingsReset", {L"/p", kOne, L"/p", kTwo, L"settings", L"reset"}, 0, Finished},
    };
    return lines;
}

} // namespace kit
