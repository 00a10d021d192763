// Entry point: event log, options, dispatch, exit status.
#include "cli/main/EntryPoint.h"

#include <cstdint>
#include <memory>

#include "automation/ComError.h"
#include "automation/ErrorPrinter.h"
#include "cli/Dispatcher.h"
#include "cli/OptionParser.h"
#include "cli/main/ProcessObjects.h"
#include "commands/CommandTable.h"
#include "commands/Command_Help.h"
#include "core/OArray.h"
#include "core/OEventLog.h"
#include "core/OString.h"

namespace kemba {
namespace {

enum ExitStatus { kSucceeded = 0, kNothingToDo = 1, kFailed = 2 };

constexpr std::uint32_t kCommandLineCategory = 0x10000000;

/// The whole command line, each word in double quotes and followed by a blank.
OString QuotedCommandLine(int argumentCount, wchar_t* arguments[]) {
    OString line;
    for (int index = 0; index < argumentCount; ++index) {
        line.Append(L"\"").Append(arguments[index]).Append(L"\" ");
    }
    return line;
}

} // namespace

int RunKemba(int argumentCount, wchar_t* arguments[]) {
    ProcessObjects& process = TheProcessObjects();
    OStringArray words;
    process.eventLog = std::make_shared<OEventLog>("Brandle KEMBA CLI");
    if (process.eventLog->IsEnabled(kCommandLineCategory)) {
        // Composed and dropped, on purpose: nothing is logged at the start.
        static_cast<void>(QuotedCommandLine(argumentCount, arguments));
    }
    if (argumentCount < 2) {
        Command_Help::ShowGeneralHelp(process.console);
        return kNothingToDo;
    }
    for (int index = 1; index < argumentCount; ++index) {
        OCore::RequireMemory(words.Append(arguments[index]));
    }
    if (!ParseOptions(process.settings, words)) {
        return kNothingToDo;
    }
    try {
        return Dispatch(TheCommands(), process.settings, process.console, words) ? kSucceeded : kFailed;
    } catch (const ComError& error) {
        PrintComError(process.console, error);
        return kSucceeded; // a failure that was printed is not one for the caller; kept on purpose
    }
}

} // namespace kemba
