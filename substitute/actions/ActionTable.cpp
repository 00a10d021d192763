// The driver actions by their codes.
#include "substitute/actions/ActionTable.h"

#include "core/OString.h"

namespace kemba::substitute {
namespace {

constexpr Action kActions[] = {
    {1, L"Test", ActionKind::FromProfile},
    {2, L"Blank", ActionKind::FromProfile},
    {3, L"Cut", ActionKind::FromProfile},
    {4, L"Feed", ActionKind::FromProfile},
    {5, L"ManageCache", ActionKind::None},
    {6, L"FlushCache", ActionKind::None},
    {7, L"Reset", ActionKind::FromProfile},
    {8, L"FactoryDefaults", ActionKind::FromProfile},
    {9, L"Calibrate", ActionKind::FromProfile},
    {10, L"PrintConfiguration", ActionKind::FromProfile},
    {11, L"ConfigureMemory", ActionKind::None},
    {30, L"FormatMemory", ActionKind::None}, // 12 is nobody's code
    {13, L"RFIDOptions", ActionKind::None},
    {14, L"StatusMonitoring", ActionKind::Queue},
    {15, L"ReadInformation", ActionKind::None},
    {16, L"SendPrinterCommand", ActionKind::None},
    {17, L"ConfigurePrinter", ActionKind::Properties},
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
        if (action.kind == ActionKind::FromProfile && OCore::EqualsIgnoreCase(wide.c_str(), action.word)) {
            return &action;
        }
    }
    return nullptr;
}

} // namespace kemba::substitute
