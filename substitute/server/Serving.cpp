// What is served, to whom, and for how long.
#include "substitute/server/Serving.h"

#include <memory>

#include "substitute/actions/ActionProfile.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/objects/UseCount.h"
#include "substitute/server/ClassFactory.h"
#include "substitute/server/InterfaceHold.h"
#include "substitute/server/ProcessSecurity.h"
#include "substitute/server/ServerProcess.h"
#include "substitute/server/ServingTurn.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/WindowsSpooler.h"

namespace kemba::substitute {
namespace {

using namespace std::chrono_literals;

constexpr ServerTimes kTimes = {
    .start = 30s,    // a start by hand, a client that died before its first call, or another server
    .grace = 5s,     // one command after the other finds the server running
    .settle = 500ms, // a client on a busy machine comes from the class to its first call
};

/// What the objects work with.
struct Parts {
    WindowsSpooler spooler;
    PrinterLocks locks;
    const ActionProfiles profiles{
        [] { return ActionProfileFolder(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brandle\\Drivers"); }};
    const ContractTypes types;
    UseCount uses;
};

void ServeClients() {
    RefuseAccount(ReadApplicationIdentity(HKEY_LOCAL_MACHINE));
    RefuseAccount(ReadApplicationIdentity(HKEY_CURRENT_USER));
    ServingTurn turn(ServingTurnName(OwnLogon()));
    if (!turn.Take(kTimes.start)) {
        return; // the process that has it serves whoever this one was started for
    }
    SecureProcess();
    // Never destroyed: a call that came at the last moment runs on a thread of COM's, which may go on until
    // the process has ended, the component runtime or not.
    Parts& parts = *new Parts;
    HoldInterfaces();
    ClassObjects classes({parts.spooler, parts.locks, parts.profiles, parts.uses, parts.types}, turn);
    ServeUntilUnused(parts.uses, classes, kTimes);
}

struct EventSourceCloser {
    void operator()(void* source) const noexcept { DeregisterEventSource(source); }
};

/// Nobody sees the standard error of a program that COM has started.
void TellEventLog(const Failure& failure) noexcept {
    const std::unique_ptr<void, EventSourceCloser> source(RegisterEventSourceW(nullptr, kServerName));
    if (source) {
        const wchar_t* texts[] = {failure.reason.c_str()};
        ReportEventW(source.get(), EVENTLOG_ERROR_TYPE, 0, 1, nullptr, 1, 0, texts, nullptr);
    }
}

} // namespace

void Serve() {
    try {
        ServeClients();
    } catch (...) {
        TellEventLog(CurrentFailure());
        throw;
    }
}

} // namespace kemba::substitute
