// settings export <file>: saves driver settings.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Saves the settings of exactly one printer's driver to a file.
class Command_Export : public Command_Base {
  public:
    using Command_Base::Command_Base;

    bool Run() override;
    void ShowHelp() override;
    OString GetName() const override;

  private:
    void Export(const OString& printerName);
};

} // namespace kemba
