// help, ?: the help pages.
#pragma once

#include "cli/Command_Base.h"
#include "messages/ConsoleOutput.h"

namespace kemba {

/// Shows a help page; it succeeds even when there is none.
class Command_Help : public Command_Base {
  public:
    using Command_Base::Command_Base;

    bool Run() override;

    /// Shows the general page; the entry point shows it too, without a command.
    static void ShowGeneralHelp(ConsoleOutput& console);
};

} // namespace kemba
