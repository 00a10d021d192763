// How long the server's process lives.
#pragma once

#include <chrono>

#include "substitute/objects/UseCount.h"

namespace kemba::substitute {

/// Classes that clients can find, or not.
class ClassOffer {
  public:
    virtual ~ClassOffer() = default;
    /// Shows the classes to clients. Throws Failure; no class is to be found then.
    virtual void Show() = 0;
    /// Hides them. A client that has found one already may still come.
    virtual void Hide() noexcept = 0;
};

struct ServerTimes {
    std::chrono::milliseconds start;  ///< patience with the first client
    std::chrono::milliseconds grace;  ///< patience with the next client after the last has left
    std::chrono::milliseconds settle; ///< how long after the classes are hidden a client may still come
};

/// Shows the classes until nothing uses the process any more, and returns with the end decided: whoever comes
/// from then on is turned away. Throws Failure when the classes cannot be shown at the beginning.
void ServeUntilUnused(UseCount& uses, ClassOffer& classes, const ServerTimes& times);

} // namespace kemba::substitute
