// What the server's objects work with.
#pragma once

#include "substitute/actions/ActionProfile.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/objects/UseCount.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

/// Made once per process and given to every object; all of it outlives them and may be used from any thread.
struct ServerContext {
    Spooler& spooler;
    PrinterLocks& locks;
    const ActionProfiles& profiles;
    UseCount& uses;
    const ContractTypes& types;
};

} // namespace kemba::substitute
