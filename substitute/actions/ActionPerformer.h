// Carrying out an action, or asking whether it can be done.
#pragma once

#include "automation/Owners.h"
#include "substitute/actions/ActionProfile.h"
#include "substitute/actions/ActionRequest.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// The request that a client passed, directly or by reference; the caller owns the reference. Throws Failure
/// (E_INVALIDARG) when it is no request of this server.
ComPtr<IActionRequest> RequestFrom(const VARIANT& argument);

/// Carries the action of that code out on the printer, or only tells whether it could. What cannot be done
/// is no failure but not supported. Throws Failure; a job that was begun is deleted then, as far as the
/// spooler allows.
ActionOutcome PerformActionOn(const ActionProfiles& profiles, const Printer& printer, LONG code,
                              bool execute);

} // namespace kemba::substitute
