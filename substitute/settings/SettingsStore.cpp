// Reading, applying and resetting a printer's settings.
#include "substitute/settings/SettingsStore.h"

#include <winspool.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>

#include "substitute/base/Failure.h"
#include "substitute/settings/SettingsPlan.h"

namespace kemba::substitute {
namespace {

void Need(DWORD error, const std::wstring& what) {
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(what + L" failed", error);
    }
}

struct LessPlace {
    bool operator()(const PrinterValue& left, const PrinterValue& right) const {
        return ComparePlaces(left, right) < 0;
    }
};

struct LessName {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareNames(left, right) < 0;
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

/// An opened printer.
class Session {
  public:
    Session(SettingsApi& api, const std::wstring& printer, DWORD rights) : m_api(api), m_printer(printer) {
        Need(api.Open(printer, rights, m_handle), L"opening the printer");
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { m_api.Close(m_handle); }

    DriverIdentity ReadDriver() const {
        DriverIdentity driver;
        Need(m_api.GetDriver(m_handle, driver), L"reading the driver's name");
        return driver;
    }
    std::optional<Bytes> ReadMode(ModeLevel level) const {
        std::optional<Bytes> mode;
        Need(m_api.GetMode(m_handle, level, mode), L"reading a device mode");
        return mode;
    }
    std::vector<PrinterValue> ReadValues(Keys& keys) const {
        std::vector<PrinterValue> values;
        ReadKey(kDriverDataKey, keys, values);
        std::sort(values.begin(), values.end(), LessPlace());
        return values;
    }

    /// The driver's own form of a device mode, for this printer.
    std::optional<Bytes> Merge(const std::optional<Bytes>& mode) const {
        if (!mode) {
            return std::nullopt;
        }
        Bytes named = *mode;
        wchar_t name[CCHDEVICENAME] = {};
        m_printer.copy(name, CCHDEVICENAME - 1);
        std::memcpy(named.data() + offsetof(DEVMODEW, dmDeviceName), name, sizeof(name));
        Bytes merged;
        Need(m_api.MergeMode(m_handle, m_printer, named, merged), L"giving a device mode to the driver");
        if (merged.empty() || ModeSize(merged) != merged.size()) {
            throw WindowsFailure(L"the driver's answer to a device mode is no device mode",
                                 ERROR_INVALID_DATA);
        }
        return merged;
    }
    Bytes DefaultMode() const {
        Bytes mode;
        Need(m_api.GetDefaultMode(m_handle, m_printer, mode), L"asking for the driver's default device mode");
        if (ModeSize(mode) != mode.size()) {
            throw WindowsFailure(L"the driver's default device mode is none", ERROR_INVALID_DATA);
        }
        return mode;
    }

    SettingsStep ModeStep(ModeLevel level, const Bytes& mode, const std::optional<Bytes>& former) const {
        return {.what = Words(level),
                .apply = [this, level, mode] { return m_api.SetMode(m_handle, level, mode); },
                .undo = [this, level, former] { return m_api.SetMode(m_handle, level, former); },
                .surelyUndone = former.has_value()};
    }
    SettingsStep ChangeStep(const PrinterValue& value, const PrinterValue& former) const {
        return {.what = L"changing the value " + Place(value),
                .apply = [this, value] { return m_api.SetValue(m_handle, value); },
                .undo = [this, former] { return m_api.SetValue(m_handle, former); }};
    }
    SettingsStep RemoveStep(const PrinterValue& former) const {
        return {.what = L"removing the value " + Place(former),
                .apply = [this, former] { return m_api.DeleteValue(m_handle, former.key, former.name); },
                .undo = [this, former] { return m_api.SetValue(m_handle, former); },
                .optional = true};
    }
    SettingsStep AddStep(const PrinterValue& value, const Keys& keys) const {
        const std::wstring newKey = NewestKey(value.key, keys);
        return {.what = L"adding the value " + Place(value),
                .apply = [this, value] { return m_api.SetValue(m_handle, value); },
                .undo =
                    [this, value, newKey] {
                        // A key of several new values goes with the first of them that is undone.
                        const DWORD error = newKey.empty()
                                                ? m_api.DeleteValue(m_handle, value.key, value.name)
                                                : m_api.DeleteKey(m_handle, newKey);
                        return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
                    },
                .surelyUndone = false};
    }

  private:
    void ReadKey(const std::wstring& key, Keys& keys, std::vector<PrinterValue>& values) const {
        DWORD error = m_api.GetValues(m_handle, key, values);
        if (error == ERROR_FILE_NOT_FOUND) { // a driver without data has no key
            return;
        }
        Need(error, L"reading the values of \"" + key + L"\"");
        keys.insert(key);
        std::vector<std::wstring> names;
        error = m_api.GetKeys(m_handle, key, names);
        if (error != ERROR_CALL_NOT_IMPLEMENTED) {
            Need(error, L"reading the keys below \"" + key + L"\"");
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

    SettingsApi& m_api;
    const std::wstring& m_printer;
    HANDLE m_handle = nullptr;
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

Settings SettingsStore::Read() const {
    const Session session(m_api, m_printer, PRINTER_ACCESS_USE);
    Keys keys;
    Settings settings{session.ReadDriver(), session.ReadMode(ModeLevel::Global),
                      session.ReadMode(ModeLevel::User), session.ReadValues(keys)};
    for (auto* const mode : {&settings.globalMode, &settings.userMode}) {
        if (*mode) {
            ClearTextRemains(**mode);
        }
    }
    return settings;
}

void SettingsStore::Apply(const Settings& settings) const {
    const OScopedLock hold(m_api.GetChangeLock());
    const Session session(m_api, m_printer, kChangeRights);
    const std::wstring driver = session.ReadDriver().name;
    if (CompareNames(driver, settings.driver.name) != 0) {
        throw WindowsFailure(L"the settings are of the driver \"" + settings.driver.name +
                                 L"\", the printer's driver is \"" + driver + L"\"",
                             ERROR_UNKNOWN_PRINTER_DRIVER);
    }
    std::vector<SettingsStep> steps;
    Keys keys;
    AddValueSteps(session, session.ReadValues(keys), settings.values, keys, steps);
    if (const auto mode = session.Merge(settings.globalMode)) {
        steps.push_back(session.ModeStep(ModeLevel::Global, *mode, session.ReadMode(ModeLevel::Global)));
    }
    if (const auto mode = session.Merge(settings.userMode)) {
        steps.push_back(session.ModeStep(ModeLevel::User, *mode, session.ReadMode(ModeLevel::User)));
    }
    CarryOut(std::move(steps));
}

void SettingsStore::Reset() const {
    const OScopedLock hold(m_api.GetChangeLock());
    const Session session(m_api, m_printer, kChangeRights);
    const std::optional<Bytes> mode = session.Merge(session.DefaultMode());
    std::vector<SettingsStep> steps;
    steps.push_back(session.ModeStep(ModeLevel::Global, *mode, session.ReadMode(ModeLevel::Global)));
    if (const auto former = session.ReadMode(ModeLevel::User)) {
        steps.push_back(session.ModeStep(ModeLevel::User, *mode, former));
    }
    CarryOut(std::move(steps));
}

} // namespace kemba::substitute
