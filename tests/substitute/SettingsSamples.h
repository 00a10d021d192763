// Printers' settings for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/Crc32.h"
#include "substitute/base/Bytes.h"
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

/// Puts a number into a settings file's bytes, as far as these reach.
inline void PutNumber(kemba::substitute::Bytes& bytes, std::size_t offset, std::uint32_t number) {
    for (std::size_t index = 0; index < 4 && offset + index < bytes.size(); ++index) {
        bytes[offset + index] = static_cast<BYTE>(number >> (8 * index));
    }
}

/// Makes the size and the checksum fit the other bytes, so that the deeper checks are reached.
inline kemba::substitute::Bytes Sealed(kemba::substitute::Bytes bytes) {
    if (bytes.size() >= 20) {
        PutNumber(bytes, 12, static_cast<std::uint32_t>(bytes.size()));
        PutNumber(bytes, bytes.size() - 4, OCore::Crc32(std::span(bytes).first(bytes.size() - 4)));
    }
    return bytes;
}

} // namespace kit
