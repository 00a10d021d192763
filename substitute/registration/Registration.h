// The server's entries in the registry: what /regserver and /unregserver do.
#pragma once

#include <string>
#include <vector>

#include "substitute/objects/ContractTypes.h"

namespace kemba::substitute {

/// For whom.
enum class Scope { Machine, CurrentUser };

/// What was done, and what its user should know of besides; lines without their ends.
struct RegistrationReport {
    std::vector<std::wstring> done;
    std::vector<std::wstring> warnings;
};

/// Writes all entries for the program at `path`, below "Software\Classes" of the machine (needs its
/// administrator) or of the current user: classes, application, type library and interfaces, for clients of
/// 64 and of 32 bits. A registration of another copy of this server is taken over. Where any other program
/// holds a class, the library or an interface, it fails and changes nothing, unless told to replace: what was
/// there is then kept for the next function. A failure half way leaves what was there before. Throws Failure.
RegistrationReport RegisterServer(Scope scope, const ContractTypes& types, const std::wstring& path,
                                  bool replace);

/// Takes back all that the above wrote and puts back what was there before; what others have written since
/// stays. Nothing to remove is no failure, but a registration of a copy that lies elsewhere is. Throws
/// Failure.
RegistrationReport UnregisterServer(Scope scope, const ContractTypes& types, const std::wstring& path);

} // namespace kemba::substitute
