// settings import <file>: loads driver settings.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Loads a settings file into each printer's driver.
class Command_Import : public Command_Base {
  public:
    using Command_Base::Command_Base;

    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;
};

} // namespace kemba
