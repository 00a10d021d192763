// The part of the spooler's seam that settings need.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "core/OSynchronizer.h"
#include "substitute/settings/Settings.h"

namespace kemba::substitute {

/// Whose device mode: the values are the spooler's information levels.
enum class ModeLevel : DWORD { Global = 8, User = 9 };

/// Spooler calls by their plain meaning; each answers a Win32 error code, ERROR_SUCCESS when it worked, and
/// ERROR_CALL_NOT_IMPLEMENTED when the system does not offer it. A handle belongs to the caller and is used
/// by one thread at a time.
class SettingsApi {
  public:
    SettingsApi() = default;
    SettingsApi(const SettingsApi&) = delete;
    SettingsApi& operator=(const SettingsApi&) = delete;
    virtual ~SettingsApi() = default;

    /// Held by whoever changes settings, so that one change is not undone on top of another.
    OSynchronizer& GetChangeLock() { return m_changeLock; }

    /// `rights` are PRINTER_ACCESS_ bits.
    virtual DWORD Open(const std::wstring& name, DWORD rights, HANDLE& handle) = 0;
    virtual void Close(HANDLE handle) = 0;
    virtual DWORD GetDriver(HANDLE handle, DriverIdentity& driver) = 0;

    /// Nothing when the printer has none of that level.
    virtual DWORD GetMode(HANDLE handle, ModeLevel level, std::optional<Bytes>& mode) = 0;
    virtual DWORD SetMode(HANDLE handle, ModeLevel level, const std::optional<Bytes>& mode) = 0;
    /// Lets the driver make a device mode of its own from one that it need not know.
    virtual DWORD MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode, Bytes& merged) = 0;
    /// The device mode of a printer that nobody has set up yet.
    virtual DWORD GetDefaultMode(HANDLE handle, const std::wstring& name, Bytes& mode) = 0;

    /// Names of the keys right below a key.
    virtual DWORD GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) = 0;
    /// Appends the values of one key.
    virtual DWORD GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) = 0;
    /// Makes the key if need be.
    virtual DWORD SetValue(HANDLE handle, const PrinterValue& value) = 0;
    virtual DWORD DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) = 0;
    /// With everything in it.
    virtual DWORD DeleteKey(HANDLE handle, const std::wstring& key) = 0;

  private:
    OCriticalSection m_changeLock;
};

/// The system's own spooler.
class WindowsSettingsApi : public SettingsApi {
  public:
    DWORD Open(const std::wstring& name, DWORD rights, HANDLE& handle) override;
    void Close(HANDLE handle) override;
    DWORD GetDriver(HANDLE handle, DriverIdentity& driver) override;
    DWORD GetMode(HANDLE handle, ModeLevel level, std::optional<Bytes>& mode) override;
    DWORD SetMode(HANDLE handle, ModeLevel level, const std::optional<Bytes>& mode) override;
    DWORD MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode, Bytes& merged) override;
    DWORD GetDefaultMode(HANDLE handle, const std::wstring& name, Bytes& mode) override;
    DWORD GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) override;
    DWORD GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) override;
    DWORD SetValue(HANDLE handle, const PrinterValue& value) override;
    DWORD DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) override;
    DWORD DeleteKey(HANDLE handle, const std::wstring& key) override;
};

} // namespace kemba::substitute
