// The driver actions of the contract, by word and by code.
#pragma once

#include <windows.h>

namespace kemba {

/// What `PerformAction` takes. `FormatMemory` is not 12, on purpose; no action has that code.
enum class ActionCode : LONG {
    Test = 1,
    Blank = 2,
    Cut = 3,
    Feed = 4,
    ManageCache = 5,
    FlushCache = 6,
    Reset = 7,
    FactoryDefaults = 8,
    Calibrate = 9,
    PrintConfiguration = 10,
    ConfigureMemory = 11,
    FormatMemory = 30,
    RFIDOptions = 13,
    StatusMonitoring = 14,
    ReadInformation = 15,
    SendPrinterCommand = 16,
    ConfigurePrinter = 17,
};

/// A word of the `action` command, as messages spell it, and what it stands for.
struct Action {
    const wchar_t* word;
    ActionCode code;
};

inline constexpr Action kActions[] = {
    {L"Test", ActionCode::Test},
    {L"Blank", ActionCode::Blank},
    {L"Cut", ActionCode::Cut},
    {L"Feed", ActionCode::Feed},
    {L"ManageCache", ActionCode::ManageCache},
    {L"FlushCache", ActionCode::FlushCache},
    {L"Reset", ActionCode::Reset},
    {L"FactoryDefaults", ActionCode::FactoryDefaults},
    {L"Calibrate", ActionCode::Calibrate},
    {L"PrintConfiguration", ActionCode::PrintConfiguration},
    {L"ConfigureMemory", ActionCode::ConfigureMemory},
    {L"FormatMemory", ActionCode::FormatMemory},
    {L"RFIDOptions", ActionCode::RFIDOptions},
    {L"StatusMonitoring", ActionCode::StatusMonitoring},
    {L"ReadInformation", ActionCode::ReadInformation},
    {L"SendPrinterCommand", ActionCode::SendPrinterCommand},
    {L"ConfigurePrinter", ActionCode::ConfigurePrinter},
};

} // namespace kemba
