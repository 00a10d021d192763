// One printer's settings in memory, and a spooler that fails at the call that a test chooses.
#pragma once

#include <windows.h>

#include <winspool.h>

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "substitute/spooler/SettingsApi.h"

/// A device mode with a private part, whose number of copies tells one from another.
inline kemba::substitute::Bytes MakeMode(short copies, WORD privateSize = 8) {
    DEVMODEW mode = {};
    mode.dmSize = sizeof(mode);
    mode.dmDriverExtra = privateSize;
    mode.dmFields = DM_COPIES;
    mode.dmCopies = copies;
    kemba::substitute::Bytes bytes(sizeof(mode) + privateSize, static_cast<BYTE>(copies));
    std::memcpy(bytes.data(), &mode, sizeof(mode));
    return bytes;
}

/// The number of copies; -1 for no mode.
inline short CopiesOf(const std::optional<kemba::substitute::Bytes>& mode) {
    DEVMODEW read = {};
    read.dmCopies = -1;
    if (mode) {
        std::memcpy(&read, mode->data(), sizeof(read));
    }
    return read.dmCopies;
}

class FakeSettingsApi : public kemba::substitute::SettingsApi {
  public:
    using Bytes = kemba::substitute::Bytes;
    using ModeLevel = kemba::substitute::ModeLevel;
    using PrinterValue = kemba::substitute::PrinterValue;

    /// Names as the registry orders and tells them apart.
    struct LessName {
        bool operator()(const std::wstring& left, const std::wstring& right) const {
            return kemba::substitute::CompareNames(left, right) < 0;
        }
    };
    using Values = std::map<std::wstring, std::pair<DWORD, Bytes>, LessName>;

    /// What the printer is: all that an operation might change.
    struct State {
        std::optional<Bytes> globalMode, userMode;
        std::map<std::wstring, Values, LessName> keys;
        bool operator==(const State&) const = default;
    };

    State state;
    kemba::substitute::DriverIdentity driver{L"Zippy 300", 0x0001000200030004};
    Bytes defaultMode = MakeMode(1);
    DWORD rightsHad = PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE;
    bool deletes = true; ///< whether values and keys can be deleted
    bool lists = true;   ///< whether keys can be listed
    int failAt = 0;      ///< number of the call that fails, from 1; 0 for none
    int failTo = 0;      ///< number of the last call that fails, if more than that one
    int calls = 0;
    int open = 0;

    DWORD Open(const std::wstring&, DWORD rights, HANDLE& handle) override {
        return Answer([&] {
            if (rights & ~rightsHad) {
                return DWORD{ERROR_ACCESS_DENIED};
            }
            handle = this;
            ++open;
            return DWORD{ERROR_SUCCESS};
        });
    }
    void Close(HANDLE) override { --open; }
    DWORD GetDriver(HANDLE, kemba::substitute::DriverIdentity& identity) override {
        return Answer([&] { return Give(identity, driver); });
    }
    DWORD GetMode(HANDLE, ModeLevel level, std::optional<Bytes>& mode) override {
        return Answer([&] { return Give(mode, Mode(level)); });
    }
    DWORD SetMode(HANDLE, ModeLevel level, const std::optional<Bytes>& mode) override {
        return Answer([&] { return Give(Mode(level), mode); });
    }
    DWORD MergeMode(HANDLE, const std::wstring&, const Bytes& mode, Bytes& merged) override {
        return Answer([&] { return Give(merged, mode); });
    }
    DWORD GetDefaultMode(HANDLE, const std::wstring&, Bytes& mode) override {
        return Answer([&] { return Give(mode, defaultMode); });
    }
    DWORD GetKeys(HANDLE, const std::wstring& key, std::vector<std::wstring>& names) override {
        return Answer([&] {
            if (!lists) {
                return DWORD{ERROR_CALL_NOT_IMPLEMENTED};
            }
            const std::wstring begin = key + L"\\";
            for (const auto& [path, values] : state.keys) {
                if (IsBelow(path, begin) && path.find(L'\\', begin.size()) == std::wstring::npos) {
                    names.push_back(path.substr(begin.size()));
                }
            }
            return DWORD{ERROR_SUCCESS};
        });
    }
    DWORD GetValues(HANDLE, const std::wstring& key, std::vector<PrinterValue>& values) override {
        return Answer([&] {
            const auto found = state.keys.find(key);
            if (found == state.keys.end()) {
                return DWORD{ERROR_FILE_NOT_FOUND};
            }
            for (const auto& [name, value] : found->second) {
                values.push_back({key, name, value.first, value.second});
            }
            return DWORD{ERROR_SUCCESS};
        });
    }
    DWORD SetValue(HANDLE, const PrinterValue& value) override {
        return Answer([&] {
            for (auto end = value.key.find(L'\\'); end != std::wstring::npos;
                 end = value.key.find(L'\\', end + 1)) {
                state.keys[value.key.substr(0, end)];
            }
            state.keys[value.key][value.name] = {value.type, value.data};
            return DWORD{ERROR_SUCCESS};
        });
    }
    DWORD DeleteValue(HANDLE, const std::wstring& key, const std::wstring& name) override {
        return Answer([&] {
            if (!deletes) {
                return DWORD{ERROR_CALL_NOT_IMPLEMENTED};
            }
            return state.keys[key].erase(name) ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_FILE_NOT_FOUND};
        });
    }
    DWORD DeleteKey(HANDLE, const std::wstring& key) override {
        return Answer([&] {
            if (!deletes) {
                return DWORD{ERROR_CALL_NOT_IMPLEMENTED};
            }
            const auto erased = std::erase_if(state.keys, [&](const auto& entry) {
                return kemba::substitute::CompareNames(entry.first, key) == 0 ||
                       IsBelow(entry.first, key + L"\\");
            });
            return erased ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_FILE_NOT_FOUND};
        });
    }

  private:
    static bool IsBelow(const std::wstring& path, const std::wstring& begin) {
        return path.size() > begin.size() &&
               kemba::substitute::CompareNames(path.substr(0, begin.size()), begin) == 0;
    }
    template<class Work>
    DWORD Answer(Work&& work) {
        ++calls;
        return calls == failAt || (calls > failAt && calls <= failTo) ? ERROR_WRITE_FAULT : work();
    }
    template<class Value>
    static DWORD Give(Value& to, const Value& from) {
        to = from;
        return ERROR_SUCCESS;
    }
    std::optional<Bytes>& Mode(ModeLevel level) {
        return level == ModeLevel::Global ? state.globalMode : state.userMode;
    }
};
