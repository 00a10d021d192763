// The automation contract as data.
#include "tests/kit/Operations.h"

#include <DriverAutomation.h>

#include <algorithm>

namespace kit {
namespace {

constexpr Operation kOperations[] = {
    {"IDriverAutomation.PutPrinterName", Gives::Nothing},
    {"IDriverAutomation.SendFile", Gives::Nothing},
    {"IDriverAutomation.PerformAction", Gives::Nothing},
    {"IDriverAutomation.GetShareName", Gives::Text},
    {"IDriverAutomation.PutShareName", Gives::Nothing},
    {"IDriverAutomation.GetPortName", Gives::Text},
    {"IDriverAutomation.GetModelName", Gives::Text},
    {"IDriverAutomation.GetComment", Gives::Text},
    {"IDriverAutomation.PutComment", Gives::Nothing},
    {"IDriverAutomation.GetLocation", Gives::Text},
    {"IDriverAutomation.PutLocation", Gives::Nothing},
    {"IDriverAutomation.GetDriverVersion", Gives::Text},
    {"IDriverAutomation.GetDriverVersionDetail", Gives::Text},
    {"IDriverAutomation.GetPrinterQueue", Gives::Object},
    {"IDriverAutomation.GetPrinterInformation", Gives::Object},
    {"IDriverAutomation.GetSettings", Gives::Object},
    {"IDriverSettings.ImportSettings", Gives::Nothing},
    {"IDriverSettings.ExportSettings", Gives::Nothing},
    {"IDriverSettings.ResetSettings", Gives::Nothing},
    {"IDriverActions.PutExecute", Gives::Nothing},
    {"IDriverActions.GetSupported", Gives::Flag},
    {"IDriverActions.GetDisplaysInterface", Gives::Flag},
    {"IPrinterQueue.Pause", Gives::Nothing},
    {"IPrinterQueue.Resume", Gives::Nothing},
    {"IPrinterQueue.Purge", Gives::Nothing},
    {"IPrinterInformation.GetStatus", Gives::Text},
    {"IVersionInformation.GetVersion", Gives::Text},
    {"IVersionInformation.GetVersionDetail", Gives::Text},
};

struct ClassRow {
    std::string_view name;
    std::string_view interfaceName;
    const CLSID* id;
};

const ClassRow& RowOf(FakeClass which) {
    static const ClassRow rows[] = {
        {"DriverAutomation", "IDriverAutomation", &__uuidof(DriverAutomation)},
        {"DriverActions", "IDriverActions", &__uuidof(DriverActions)},
        {"VersionInformation", "IVersionInformation", &__uuidof(VersionInformation)},
    };
    return rows[static_cast<std::size_t>(which)];
}

} // namespace

std::string_view NameOf(FakeClass which) {
    return RowOf(which).name;
}

const CLSID& ClassIdOf(FakeClass which) {
    return *RowOf(which).id;
}

std::string_view InterfaceOf(FakeClass which) {
    return RowOf(which).interfaceName;
}

std::span<const Operation> AllOperations() {
    return kOperations;
}

const Operation* FindOperation(std::string_view name) {
    const auto* const found = std::ranges::find(kOperations, name, &Operation::name);
    return found == std::end(kOperations) ? nullptr : found;
}

} // namespace kit
