// Printers' settings for tests.
#pragma once

#include "substitute/settings/Settings.h"
#include "tests/substitute/FakeSpooler.h"

namespace kit {

/// A printer with both device modes and values of several kinds, in two keys.
inline FakeSpooler::State MakeRichState() {
    FakeSpooler::State state;
    state.globalMode = MakeMode(2);
    state.userMode = MakeMode(3, 0);
    state.keys[L"PrinterDriverData"] = {
        {L"", {REG_NONE, {}}}, {L"Darkness", {REG_DWORD, {7, 0, 0, 0}}}, {L"Name", {REG_SZ, {'A', 0, 0, 0}}}};
    state.keys[L"PrinterDriverData\\Tray"] = {{L"Sensor", {REG_BINARY, {1, 2, 3, 4, 5}}}};
    return state;
}

/// Another state of the same printer: some values changed, missing and new, one in a new key.
inline FakeSpooler::State MakeOtherState() {
    FakeSpooler::State state;
    state.globalMode = MakeMode(20);
    state.userMode = MakeMode(30);
    state.keys[L"PrinterDriverData"] = {{L"Darkness", {REG_DWORD, {9, 0, 0, 0}}},
                                        {L"Name", {REG_SZ, {'A', 0, 0, 0}}},
                                        {L"Speed", {REG_DWORD, {4, 0, 0, 0}}}};
    state.keys[L"PrinterDriverData\\Head"] = {};
    state.keys[L"PrinterDriverData\\Head\\Left"] = {{L"Width", {REG_DWORD, {80, 0, 0, 0}}},
                                                    {L"Warm", {REG_DWORD, {1, 0, 0, 0}}}};
    return state;
}

/// The settings of a printer in that state.
inline kemba::substitute::Settings SettingsOf(const FakeSpooler::State& state) {
    kemba::substitute::Settings settings{{L"Zippy 300", 0}, state.globalMode, state.userMode, {}};
    for (const auto& [key, values] : state.keys) {
        for (const auto& [name, value] : values) {
            settings.values.push_back({key, name, value.first, value.second});
        }
    }
    return settings;
}

} // namespace kit
