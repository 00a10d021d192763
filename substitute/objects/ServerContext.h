// What the server's objects work with.
#pragma once

#include "substitute/actions/ActionProfile.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/server/ServerProcess.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

/// Made once per process and given to every object; all of it outlives them and may be used from any thread.
struct ServerContext {
    Spooler& spooler;
    PrinterLocks& locks;
    const ActionProfiles& profiles;
    ServerProcess& process;
    const ContractTypes& types;
};

} // namespace kemba::substitute
