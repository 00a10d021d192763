// set <field> <value>: writes one property of each printer.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Writes one field of each printer.
class Command_Set : public Command_Base {
  public:
    using Command_Base::Command_Base;

    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;

  private:
    OString m_rejectedArgument; // the last word that was no field
};

} // namespace kemba
