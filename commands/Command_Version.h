// version [interface|os|driver]: versions of the server, the system and the drivers.
#pragma once

#include "cli/Command_Base.h"
#include "core/OString.h"

namespace kemba {

/// Prints versions; it selects printers for the drivers' section alone.
class Command_Version : public Command_Base {
  public:
    using Command_Base::Command_Base;

    bool Run() override;
    void ShowHelp() override;
    bool Execute(const OString& printerName) override;
    OString GetName() const override;

  private:
    void PrintServerVersion();
    void PrintSystemVersion();
    bool PrintDriverVersions();
    OString OrUnknown(const OString& version);
};

} // namespace kemba
