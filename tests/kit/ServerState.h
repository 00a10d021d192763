// What the parts of the fake server share.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/kit/Journal.h"
#include "tests/kit/Script.h"

namespace kit {

/// How an object answers the question whether an interface of its supports error information.
enum class ErrorInfoSupport {
    Yes,   ///< S_OK for the object's contract interface, S_FALSE for any other
    No,    ///< S_FALSE
    Absent ///< the object has no ISupportErrorInfo
};

/// The common base of the server's objects.
class FakeIdentity;

/// One server's state; leaked objects keep it alive beyond the server.
struct ServerState {
    Journal journal;
    Script script;
    std::map<std::string, int, std::less<>> numbers;   ///< objects made so far, by class
    std::map<IUnknown*, FakeIdentity*> objects;        ///< live ones, by their identity
    std::vector<std::string> errorInformation;         ///< labels of the live error information objects
    std::map<std::string, ErrorInfoSupport> supportOf; ///< by interface, where it differs from `support`
    ErrorInfoSupport support = ErrorInfoSupport::Yes;
    int factoryLocks = 0;
    std::vector<std::string> problems; ///< what the client did that no client may do
    bool isOpen = true;                ///< the server is still there
    /// Objects without references, kept while the server is there so that a use after the last release is
    /// noticed.
    std::vector<std::unique_ptr<FakeIdentity>> released;

    ServerState();
    ServerState(const ServerState&) = delete;
    ServerState& operator=(const ServerState&) = delete;
    ~ServerState();

    int NextNumber(std::string_view className) { return ++numbers.emplace(className, 0).first->second; }
};

} // namespace kit
