// settings import|export|reset: administration of driver settings.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Hands the sub-action to its own command, or resets the settings of each printer.
class Command_Settings : public Command_Base {
  public:
    using Command_Base::Command_Base;

    bool Run() override;
    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;

  private:
    Arguments m_subArguments; // without the sub-action word; filled by Run
};

} // namespace kemba
