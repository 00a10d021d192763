// The automation contract as data: the classes that can be activated and every operation that a client may
// call.
#pragma once

#include <windows.h>

#include <array>
#include <span>
#include <string_view>

namespace kit {

/// The classes that a client can activate.
enum class FakeClass { DriverAutomation, DriverActions, VersionInformation };

inline constexpr std::array kAllClasses{FakeClass::DriverAutomation, FakeClass::DriverActions,
                                        FakeClass::VersionInformation};

/// The class's name, "DriverAutomation" for one.
std::string_view NameOf(FakeClass which);
const CLSID& ClassIdOf(FakeClass which);

/// What an operation gives back beside its status.
enum class Gives { Nothing, Text, Flag, Object };

struct Operation {
    std::string_view name;      ///< interface, dot and operation, "IDriverAutomation.GetComment" for one
    int position;               ///< in its interface, counted from 1
    std::string_view arguments; ///< direction and type of each, "in BSTR, in VARIANT" for one

    Gives WhatItGives() const;
    std::string_view Interface() const { return name.substr(0, name.find('.')); }
};

/// Every operation of the contract but the reserved ones, interface by interface in contract order.
std::span<const Operation> AllOperations();

/// The operation of that name, or null.
const Operation* FindOperation(std::string_view name);

} // namespace kit
