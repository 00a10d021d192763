// What the print spooler can do about each action.
#include "substitute/actions/ActionKind.h"

#include <optional>

#include "automation/Actions.h"

namespace kemba::substitute {

std::optional<ActionKind> KindOf(ActionCode code) {
    switch (code) { // without a default: a new action does not compile until it has its place here
    case ActionCode::Test:
    case ActionCode::Blank:
    case ActionCode::Cut:
    case ActionCode::Feed:
    case ActionCode::Reset:
    case ActionCode::FactoryDefaults:
    case ActionCode::Calibrate:
    case ActionCode::PrintConfiguration: return ActionKind::FromProfile;
    case ActionCode::StatusMonitoring: return ActionKind::Queue;
    case ActionCode::ConfigurePrinter: return ActionKind::Properties;
    case ActionCode::ManageCache:
    case ActionCode::FlushCache:
    case ActionCode::ConfigureMemory:
    case ActionCode::FormatMemory:
    case ActionCode::RFIDOptions:
    case ActionCode::ReadInformation:
    case ActionCode::SendPrinterCommand: break;
    }
    return std::nullopt;
}

} // namespace kemba::substitute
