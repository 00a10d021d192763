// Making of the objects that a client gets from a DriverAutomation object.
#pragma once

#include <DriverAutomation.h>

#include <memory>
#include <string>

#include "tests/kit/ServerState.h"

namespace kit {

/// Each makes an object that is bound to the printer; the caller owns its one reference.
IPrinterQueue* MakePrinterQueue(const std::shared_ptr<ServerState>& state, const std::wstring& printer);
IPrinterInformation* MakePrinterInformation(const std::shared_ptr<ServerState>& state,
                                            const std::wstring& printer);
IDriverSettings* MakeDriverSettings(const std::shared_ptr<ServerState>& state, const std::wstring& printer);

} // namespace kit
