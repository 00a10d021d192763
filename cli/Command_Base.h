// The base of all commands, and the run operation that most of them inherit.
#pragma once

#include <windows.h>

#include <vector>

#include "cli/ApplicationSettings.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// The words after the command word; the texts belong to the argument list of the run, which outlives the
/// command.
using Arguments = std::vector<const wchar_t*>;

/// One command. The component object runtime is initialised for the thread while it lives.
class Command_Base {
  public:
    /// `settings` and `console` must outlive the command.
    Command_Base(const ApplicationSettings& settings, ConsoleOutput& console, const Arguments& arguments);
    Command_Base(const Command_Base&) = delete;
    Command_Base& operator=(const Command_Base&) = delete;
    virtual ~Command_Base();

    /// Runs the command; false when it failed. The inherited operation selects the printers and calls
    /// `Execute` for each, stopping at the first that fails or throws; nothing of what `Execute` throws
    /// leaves it.
    virtual bool Run();
    /// Prints the command's help page.
    virtual void ShowHelp();
    /// Does the command's work for one printer; false stops the run.
    virtual bool Execute(const OString& printerName);
    /// The command's name for messages.
    virtual OString GetName() const;

  protected:
    const ApplicationSettings& GetSettings() const { return *m_settings; }
    ConsoleOutput& GetConsole() const { return *m_console; }
    const Arguments& GetArguments() const { return m_arguments; }
    /// Calls `Execute` for each printer; false at the first that fails or throws.
    bool ExecuteForEach(const OStringArray& printerNames);

  private:
    const ApplicationSettings* m_settings;
    HRESULT m_runtimeStatus; // of the runtime's initialisation; not looked at
    const Arguments m_arguments;
    ConsoleOutput* m_console;
};

} // namespace kemba
