// send <file>: hands a file to each printer.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Sends a file to each printer.
class Command_Send : public Command_Base {
  public:
    using Command_Base::Command_Base;

    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;
};

} // namespace kemba
