// The automation contract as data.
#include "tests/kit/Operations.h"

#include <DriverAutomation.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

namespace kit {
namespace {

/// Positions and arguments are the binary contract, which is never changed: both are held against the type
/// library.
constexpr Operation kOperations[] = {
    {"IDriverAutomation.PutPrinterName", 1, "in BSTR"},
    {"IDriverAutomation.SendFile", 2, "in BSTR, in BSTR"},
    {"IDriverAutomation.PerformAction", 3, "in long, in VARIANT"},
    {"IDriverAutomation.GetShareName", 6, "out BSTR"},
    {"IDriverAutomation.PutShareName", 7, "in BSTR"},
    {"IDriverAutomation.GetPortName", 8, "out BSTR"},
    {"IDriverAutomation.GetModelName", 10, "out BSTR"},
    {"IDriverAutomation.GetComment", 11, "out BSTR"},
    {"IDriverAutomation.PutComment", 12, "in BSTR"},
    {"IDriverAutomation.GetLocation", 13, "out BSTR"},
    {"IDriverAutomation.PutLocation", 14, "in BSTR"},
    {"IDriverAutomation.GetDriverVersion", 19, "out BSTR"},
    {"IDriverAutomation.GetDriverVersionDetail", 20, "out BSTR"},
    {"IDriverAutomation.GetPrinterQueue", 21, "out IPrinterQueue"},
    {"IDriverAutomation.GetPrinterInformation", 22, "out IPrinterInformation"},
    {"IDriverAutomation.GetSettings", 23, "out IDriverSettings"},
    {"IDriverSettings.ImportSettings", 1, "in BSTR, in VARIANT"},
    {"IDriverSettings.ExportSettings", 2, "in BSTR, in VARIANT"},
    {"IDriverSettings.ResetSettings", 3, "in VARIANT"},
    {"IDriverActions.PutExecute", 4, "in VARIANT_BOOL"},
    {"IDriverActions.GetSupported", 5, "out VARIANT_BOOL"},
    {"IDriverActions.GetDisplaysInterface", 9, "out VARIANT_BOOL"},
    {"IPrinterQueue.Pause", 2, ""},
    {"IPrinterQueue.Resume", 3, ""},
    {"IPrinterQueue.Purge", 4, ""},
    {"IPrinterInformation.GetStatus", 1, "out BSTR"},
    {"IVersionInformation.GetVersion", 1, "out BSTR"},
    {"IVersionInformation.GetVersionDetail", 2, "out BSTR"},
};

struct ClassRow {
    std::string_view name;
    const CLSID* id;
};

const ClassRow& RowOf(FakeClass which) {
    static const ClassRow rows[] = {
        {"DriverAutomation", &__uuidof(DriverAutomation)},
        {"DriverActions", &__uuidof(DriverActions)},
        {"VersionInformation", &__uuidof(VersionInformation)},
    };
    return rows[static_cast<std::size_t>(which)];
}

} // namespace

Gives Operation::WhatItGives() const {
    const auto out = arguments.find("out ");
    if (out == arguments.npos) {
        return Gives::Nothing;
    }
    const std::string_view type = arguments.substr(out + 4);
    return type == "BSTR" ? Gives::Text : type == "VARIANT_BOOL" ? Gives::Flag : Gives::Object;
}

std::string_view NameOf(FakeClass which) {
    return RowOf(which).name;
}

const CLSID& ClassIdOf(FakeClass which) {
    return *RowOf(which).id;
}

std::span<const Operation> AllOperations() {
    return kOperations;
}

const Operation* FindOperation(std::string_view name) {
    const auto* const found = std::ranges::find(kOperations, name, &Operation::name);
    return found == std::end(kOperations) ? nullptr : found;
}

} // namespace kit
