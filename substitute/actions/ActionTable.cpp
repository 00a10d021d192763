// The driver actions that the print spooler can do something about, by their codes.
#include "substitute/actions/ActionTable.h"

#include <cwchar>
#include <string>

#include "core/OString.h"

namespace kemba::substitute {
namespace {

constexpr Action kActions[] = {
    {1, L"Test", ActionKind::FromProfile},        {2, L"Blank", ActionKind::FromProfile},
    {3, L"Cut", ActionKind::FromProfile},         {4, L"Feed", ActionKind::FromProfile},
    {7, L"Reset", ActionKind::FromProfile},       {8, L"FactoryDefaults", ActionKind::FromProfile},
    {9, L"Calibrate", ActionKind::FromProfile},   {10, L"PrintConfiguration", ActionKind::FromProfile},
    {14, L"StatusMonitoring", ActionKind::Queue}, {17, L"ConfigurePrinter", ActionKind::Properties},
};

} // namespace

const Action* FindAction(LONG code) {
    for (const Action& action : kActions) {
        if (action.code == code) {
            return &action;
        }
    }
    return nullptr;
}

const Action* FindProfileAction(std::string_view word) {
    const std::wstring wide(word.begin(), word.end());
    for (const Action& action : kActions) {
        if (action.kind == ActionKind::FromProfile && wide.size() == std::wcslen(action.word) &&
            OCore::EqualsIgnoreCase(wide.c_str(), action.word)) {
            return &action;
        }
    }
    return nullptr;
}

} // namespace kemba::substitute
