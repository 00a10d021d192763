// How the printer library reports failures.
#pragma once

#include <stdexcept>
#include <string>

namespace demo {

/// A spooler call that failed, with the system's error number.
class SpoolerError : public std::runtime_error {
  public:
    SpoolerError(const std::string& call, unsigned long error)
        : std::runtime_error(call + " failed, error " + std::to_string(error)) {}
};

} // namespace demo
