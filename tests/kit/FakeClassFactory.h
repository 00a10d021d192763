// The class factories of the fake server.
#pragma once

#include <windows.h>

#include <memory>

#include "tests/kit/Operations.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// Registers the class's factory for this process; gives the registration for CoRevokeClassObject.
/// Throws std::runtime_error when that fails.
DWORD RegisterFakeClass(std::shared_ptr<ServerState> state, FakeClass which);

} // namespace kit
