// Keeping the contract's interfaces known to the component runtime.
#pragma once

namespace kemba::substitute {

/// From now on the component runtime of this apartment has an object of each interface that clients ask for,
/// which nobody can reach. Without it an interface goes with its last object, and Wine's runtime may then
/// wait without end for a call that ends in that moment, with all clients behind it. What cannot be kept is
/// left out: nothing else depends on it.
void HoldInterfaces();

} // namespace kemba::substitute
