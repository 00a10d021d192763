// action <word> [-n]: the driver's utility functions.
#pragma once

#include "automation/Actions.h"
#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Performs an action on each printer, or asks only whether it is supported.
class Command_Action : public Command_Base {
  public:
    using Command_Base::Command_Base;

    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;

  private:
    void ScanArguments();
    void Perform(const OString& printerName);

    const Action* m_action = nullptr; // until a word is recognised
    bool m_queryOnly = false;
};

} // namespace kemba
