// Reading, applying and resetting a printer's settings.
#include "substitute/settings/SettingsStore.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/FileVersion.h"
#include "substitute/base/Names.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsPlan.h"
#include "substitute/spooler/DefaultMode.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterHandle.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {
namespace {

struct LessPlace {
    bool operator()(const PrinterValue& left, const PrinterValue& right) const {
        return ComparePlaces(left, right) < 0;
    }
};

using Keys = std::set<std::wstring, LessName>;

std::wstring Place(const PrinterValue& value) {
    return L"\"" + value.key + L"\\" + value.name + L"\"";
}

const wchar_t* Words(ModeLevel level) {
    return level == ModeLevel::Global ? L"setting the printer's device mode"
                                      : L"setting the user's device mode";
}

/// An opened printer whose settings are read or changed.
class Session {
  public:
    explicit Session(const PrinterHandle& handle) : m_handle(handle), m_spooler(handle.GetSpooler()) {}

    DriverIdentity ReadDriver() const {
        const DriverDescription driver = DescribeDriver(m_handle);
        // The file's version: some systems leave the one in the driver's record unset.
        return {driver.name, VersionOfFile(driver.path)};
    }
    std::vector<PrinterValue> ReadValues(Keys& keys) const {
        std::vector<PrinterValue> values;
        ReadKey(kDriverDataKey, keys, values);
        std::sort(values.begin(), values.end(), LessPlace());
        return values;
    }

    /// The driver's own form of a device mode, for this printer; gives a Win32 error code.
    DWORD Merge(const Bytes& mode, Bytes& merged) const {
        Bytes named = mode;
        wchar_t name[CCHDEVICENAME] = {};
        m_handle.Name().copy(name, CCHDEVICENAME - 1);
        std::memcpy(named.data() + offsetof(DEVMODEW, dmDeviceName), name, sizeof(name));
        const DWORD error = m_spooler.MergeMode(m_handle.Get(), m_handle.Name(), named, merged);
        return error != ERROR_SUCCESS || (!merged.empty() && ModeSize(merged) == merged.size())
                   ? error
                   : ERROR_INVALID_DATA;
    }
    /// Throws Failure unless the driver takes the device mode.
    void NeedTaken(const Bytes& mode) const {
        Bytes merged;
        ThrowIfError(Merge(mode, merged), L"giving a device mode to the driver");
    }

    /// The driver gives its form of the mode when the step is made: the printer's data, which it may ask for,
    /// have changed by then.
    SettingsStep ModeStep(ModeLevel level, const Bytes& mode) const {
        return {.what = Words(level),
                .apply =
                    [this, level, mode] {
                        Bytes merged;
                        const DWORD error = Merge(mode, merged);
                        return error == ERROR_SUCCESS ? m_handle.SetMode(level, merged) : error;
                    },
                .undo = [this, level,
                         former = m_handle.ReadMode(level)] { return m_handle.SetMode(level, former); }};
    }
    SettingsStep ChangeStep(const PrinterValue& value, const PrinterValue& former) const {
        return {.what = L"changing the value " + Place(value),
                .apply = [this, value] { return m_spooler.SetValue(m_handle.Get(), value); },
                .undo = [this, former] { return m_spooler.SetValue(m_handle.Get(), former); }};
    }
    SettingsStep RemoveStep(const PrinterValue& former) const {
        return {.what = L"removing the value " + Place(former),
                .apply = [this,
                          former] { return m_spooler.DeleteValue(m_handle.Get(), former.key, former.name); },
                .undo = [this, former] { return m_spooler.SetValue(m_handle.Get(), former); },
                .optional = true};
    }
    SettingsStep AddStep(const PrinterValue& value, const Keys& keys) const {
        const std::wstring newKey = NewestKey(value.key, keys);
        return {.what = L"adding the value " + Place(value),
                .apply = [this, value] { return m_spooler.SetValue(m_handle.Get(), value); },
                .undo =
                    [this, value, newKey] {
                        // A key of several new values goes with the first of them that is undone.
                        const DWORD error = newKey.empty()
                                                ? m_spooler.DeleteValue(m_handle.Get(), value.key, value.name)
                                                : m_spooler.DeleteKey(m_handle.Get(), newKey);
                        return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
                    },
                .surelyUndone = false};
    }

  private:
    void ReadKey(const std::wstring& key, Keys& keys, std::vector<PrinterValue>& values) const {
        DWORD error = m_spooler.GetValues(m_handle.Get(), key, values);
        if (error == ERROR_FILE_NOT_FOUND) { // a driver without data has no key
            return;
        }
        ThrowIfError(error, L"reading the values of \"" + key + L"\"");
        keys.insert(key);
        std::vector<std::wstring> names;
        error = m_spooler.GetKeys(m_handle.Get(), key, names);
        if (error != ERROR_CALL_NOT_IMPLEMENTED) {
            ThrowIfError(error, L"reading the keys below \"" + key + L"\"");
        }
        for (const std::wstring& name : names) {
            ReadKey(key + L"\\" + name, keys, values);
        }
    }

    /// The topmost key on the way to `key` that is not there yet; empty when all are.
    static std::wstring NewestKey(const std::wstring& key, const Keys& keys) {
        for (std::size_t end = 0; end != std::wstring::npos;) {
            end = key.find(L'\\', end + 1);
            if (!keys.contains(key.substr(0, end))) {
                return key.substr(0, end);
            }
        }
        return {};
    }

    const PrinterHandle& m_handle;
    Spooler& m_spooler;
};

constexpr DWORD kChangeRights = PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE;

/// Steps that lead from the values that are there to those wanted; both are in order.
void AddValueSteps(const Session& session, const std::vector<PrinterValue>& present,
                   const std::vector<PrinterValue>& wanted, const Keys& keys,
                   std::vector<SettingsStep>& steps) {
    auto former = present.begin();
    auto value = wanted.begin();
    while (former != present.end() || value != wanted.end()) {
        const int order = former == present.end() ? 1
                          : value == wanted.end() ? -1
                                                  : ComparePlaces(*former, *value);
        if (order < 0) {
            steps.push_back(session.RemoveStep(*former));
        } else if (order > 0) {
            steps.push_back(session.AddStep(*value, keys));
        } else if (former->type != value->type || former->data != value->data) {
            steps.push_back(session.ChangeStep(*value, *former));
        }
        former += order <= 0 ? 1 : 0;
        value += order >= 0 ? 1 : 0;
    }
}

} // namespace

Settings ReadSettings(const Printer& printer) {
    const PrinterHold hold = printer.Hold();
    const PrinterHandle handle = printer.Open(PRINTER_ACCESS_USE);
    const Session session(handle);
    Keys keys;
    Settings settings{session.ReadDriver(), handle.ReadMode(ModeLevel::Global),
                      handle.ReadMode(ModeLevel::User), session.ReadValues(keys)};
    for (auto* const mode : {&settings.globalMode, &settings.userMode}) {
        if (*mode) {
            ClearTextRemains(**mode);
        }
    }
    return settings;
}

void ApplySettings(const Printer& printer, const Settings& settings) {
    const PrinterHold hold = printer.Hold();
    const PrinterHandle handle = printer.Open(kChangeRights);
    const Session session(handle);
    const std::wstring driver = session.ReadDriver().name;
    if (!IsSameName(driver, settings.driver.name)) {
        throw WindowsFailure(L"the settings are of the driver \"" + settings.driver.name +
                                 L"\", the printer's driver is \"" + driver + L"\"",
                             ERROR_UNKNOWN_PRINTER_DRIVER);
    }
    const std::pair<ModeLevel, const std::optional<Bytes>&> modes[] = {
        {ModeLevel::Global, settings.globalMode}, {ModeLevel::User, settings.userMode}};
    for (const auto& [level, mode] : modes) {
        if (mode) {
            session.NeedTaken(*mode);
        }
    }
    Keys keys;
    const std::vector<PrinterValue> present = session.ReadValues(keys);
    std::vector<SettingsStep> steps;
    AddValueSteps(session, present, settings.values, keys, steps);
    // New values come after all other ones, for they perhaps cannot be taken back.
    std::stable_partition(steps.begin(), steps.end(),
                          [](const SettingsStep& step) { return step.surelyUndone; });
    for (const auto& [level, mode] : modes) {
        if (mode) {
            steps.push_back(session.ModeStep(level, *mode));
        }
    }
    CarryOut(steps);
}

void ResetSettings(const Printer& printer) {
    const PrinterHold hold = printer.Hold();
    const PrinterHandle handle = printer.Open(kChangeRights);
    const Session session(handle);
    const Bytes mode = ReadDefaultMode(handle);
    session.NeedTaken(mode);
    std::vector<SettingsStep> steps;
    steps.push_back(session.ModeStep(ModeLevel::Global, mode));
    if (handle.ReadMode(ModeLevel::User)) {
        steps.push_back(session.ModeStep(ModeLevel::User, mode));
    }
    CarryOut(steps);
}

} // namespace kemba::substitute
