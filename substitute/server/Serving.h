// The server's work: from its start by COM to its end.
#pragma once

namespace kemba::substitute {

/// Serves clients until none has been there for some seconds. To be called once, in the multithreaded
/// apartment. Throws Failure when the server cannot start, after telling the event log why.
void Serve();

} // namespace kemba::substitute
