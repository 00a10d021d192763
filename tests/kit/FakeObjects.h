// Making of the fake server's objects.
#pragma once

#include <windows.h>

#include <memory>

#include "tests/kit/Operations.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// Makes an object of the class and gives the interface asked for, as a class factory does; journals the
/// activation.
HRESULT MakeFakeObject(const std::shared_ptr<ServerState>& state, FakeClass which, REFIID id, void** object);

} // namespace kit
