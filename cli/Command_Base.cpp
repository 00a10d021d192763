// Command base: lifetime of the component object runtime, and the loop over the selected printers.
#include "cli/Command_Base.h"

#include <objbase.h>

#include <algorithm>

#include "cli/ApplicationSettings.h"
#include "cli/PrinterSelection.h"
#include "core/OArray.h"
#include "core/OStream.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

Command_Base::Command_Base(const ApplicationSettings& settings, ConsoleOutput& console,
                           const Arguments& arguments)
    : m_settings(&settings), m_arguments(arguments), m_console(&console) {
    m_runtimeStatus = CoInitialize(nullptr); // after what may fail, for only the destructor undoes it
}

Command_Base::~Command_Base() {
    CoUninitialize();
}

bool Command_Base::Run() {
    OStringArray printerNames;
    if (!SelectPrinters(GetSettings(), printerNames, GetConsole())) {
        return false;
    }
    GetConsole().PrintMessage("text:Processing", GetName());
    const bool succeeded = ExecuteForEach(printerNames);
    GetConsole().PrintMessage("text:FinishProcessingCommand");
    return succeeded;
}

void Command_Base::ShowHelp() {
    GetConsole() << "Help not implemented!" << OCore::EndOfLine;
}

bool Command_Base::Execute(const OString&) {
    GetConsole() << "Command not implemented!" << OCore::EndOfLine;
    return false;
}

OString Command_Base::GetName() const {
    return L"Command Base";
}

bool Command_Base::ExecuteForEach(const OStringArray& printerNames) {
    try {
        return std::all_of(printerNames.begin(), printerNames.end(),
                           [this](const OString& name) { return Execute(name); });
    } catch (...) {
        // A failure that a command did not handle ends the run without a word of its own; kept on purpose.
        return false;
    }
}

} // namespace kemba
