// What the server's objects work with.
#pragma once

#include "substitute/ActionProfile.h"
#include "substitute/ContractTypes.h"
#include "substitute/PrinterApi.h"
#include "substitute/PrinterDialogs.h"
#include "substitute/ServerProcess.h"

namespace kemba::substitute {

/// Made once per process and given to every object; all of it outlives them and may be used from any thread.
struct ServerContext {
    PrinterApi& printers;
    PrinterDialogs& dialogs;
    const ActionProfiles& profiles;
    ServerProcess& process;
    const ContractTypes& types;
};

} // namespace kemba::substitute
