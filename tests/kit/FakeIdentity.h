// What all objects of the fake server have in common: name, binding, journal and script.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// The name of an interface of the contract, or empty.
std::string_view ContractInterfaceName(REFIID id);

class FakeIdentity {
  public:
    FakeIdentity(std::shared_ptr<ServerState> state, std::string_view className,
                 std::string_view interfaceName, int number);
    FakeIdentity(const FakeIdentity&) = delete;
    FakeIdentity& operator=(const FakeIdentity&) = delete;
    virtual ~FakeIdentity() = default;

    /// "DriverAutomation#1"
    const std::string& Label() const { return m_label; }
    void Bind(std::wstring printer) { m_printer = std::move(printer); }

  protected:
    /// Counts the object as live under its identity.
    void Enlist(IUnknown* identity);
    ULONG AddReference();
    /// With the last reference the object leaves the list of the live ones; the state owns what is left of
    /// it.
    ULONG DropReference(IUnknown* identity);

    ServerState& State() { return *m_state; }
    const std::shared_ptr<ServerState>& SharedState() { return m_state; }
    const std::wstring& Printer() const { return m_printer; }

    void AddEvent(const std::string& event) { m_state->journal.AddEvent(m_label + "." + event); }
    /// The scripted status of an event that is no operation ("Run", "QueryInterface"), S_OK without one.
    HRESULT EventStatus(std::string_view event);
    ErrorInfoSupport Support() const;

    /// Journals a call and gives its scripted answer, or a default one; sets the thread's error information.
    Answer Call(std::string_view operation, std::string_view arguments = {});
    HRESULT CallPlain(std::string_view operation, std::string_view arguments = {});
    HRESULT CallForText(std::string_view operation, BSTR* text);
    HRESULT CallForFlag(std::string_view operation, VARIANT_BOOL defaultFlag, VARIANT_BOOL* flag);
    /// Answers a call of a place in the contract that clients leave alone.
    HRESULT CallReserved(std::string_view operation);

    /// An argument as the journal shows it, which must be a BSTR.
    std::string Show(BSTR text, std::string_view operation);
    std::string Show(const VARIANT& value);
    /// The object of this server that the value holds, or null.
    FakeIdentity* FindObject(const VARIANT& value);

  private:
    /// Notes a use of the object when it has no reference any more.
    void CheckAlive(std::string_view use);

    std::shared_ptr<ServerState> m_state;
    ULONG m_references = 0;
    bool m_isReleased = false;
    std::string m_className;
    std::string m_interfaceName;
    int m_number;
    std::string m_label;
    std::wstring m_printer;
    std::map<std::string, int, std::less<>> m_calls; // by operation
};

} // namespace kit
