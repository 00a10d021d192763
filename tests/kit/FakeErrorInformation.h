// Error information as a server leaves it for its client.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tests/kit/ServerState.h"

namespace kit {

/// Leaves an error information object for the calling thread. A request for a text that is not there fails.
void SetFakeErrorInformation(std::shared_ptr<ServerState> state, std::optional<std::wstring> source,
                             std::optional<std::wstring> description);

} // namespace kit
