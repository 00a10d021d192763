// action <word> [-n]: the driver's utility functions.
#pragma once

#include "cli/Command_Base.h"

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

    OString m_actionWord;  // as the table spells it
    long m_actionCode = 0; // 0 until a word is recognised
    bool m_queryOnly = false;
};

} // namespace kemba
