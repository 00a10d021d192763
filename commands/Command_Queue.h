// queue <action>: controls the print queue of each printer.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Pauses, resumes or purges each printer's queue.
class Command_Queue : public Command_Base {
  public:
    using Command_Base::Command_Base;

    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;

  private:
    OString m_rejectedArgument; // the last word that was no action
};

} // namespace kemba
