// Journal and script of the fake server's objects.
#include "tests/kit/FakeIdentity.h"

#include <DriverAutomation.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/FakeErrorInformation.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"
#include "tests/kit/TextWatch.h"

namespace kit {
namespace {

std::string StatusText(HRESULT status) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(status));
    return text;
}

} // namespace

ServerState::ServerState() = default;
ServerState::~ServerState() = default;

std::string_view ContractInterfaceName(REFIID id) {
    static const std::pair<const IID*, std::string_view> rows[] = {
        {&__uuidof(IDriverAutomation), "IDriverAutomation"},
        {&__uuidof(IDriverSettings), "IDriverSettings"},
        {&__uuidof(IDriverActions), "IDriverActions"},
        {&__uuidof(IPrinterQueue), "IPrinterQueue"},
        {&__uuidof(IPrinterInformation), "IPrinterInformation"},
        {&__uuidof(IVersionInformation), "IVersionInformation"},
    };
    for (const auto& [known, name] : rows) {
        if (IsEqualIID(id, *known)) {
            return name;
        }
    }
    return {};
}

FakeIdentity::FakeIdentity(std::shared_ptr<ServerState> state, std::string_view className,
                           std::string_view interfaceName, int number)
    : m_state(std::move(state)), m_className(className), m_interfaceName(interfaceName), m_number(number),
      m_label(m_className + "#" + std::to_string(number)) {}

void FakeIdentity::Enlist(IUnknown* identity) {
    m_state->objects.emplace(identity, this);
}

ULONG FakeIdentity::AddReference() {
    CheckAlive("AddRef");
    return ++m_references;
}

ULONG FakeIdentity::DropReference(IUnknown* identity) {
    CheckAlive("Release");
    const ULONG left = m_references == 0 ? 0 : --m_references;
    if (left > 0 || m_isReleased) {
        return left;
    }
    m_isReleased = true;
    m_state->objects.erase(identity);
    m_state->journal.AddEvent("~" + m_label);
    std::unique_ptr<FakeIdentity> self(this);
    if (m_state->isOpen) {
        m_state->released.push_back(std::move(self));
    }
    return 0;
}

void FakeIdentity::CheckAlive(std::string_view use) {
    if (m_isReleased) {
        m_state->problems.push_back("used after its last release: " + m_label + "." + std::string(use));
    }
}

HRESULT FakeIdentity::EventStatus(std::string_view event) {
    const Answer* const answer =
        m_state->script.Find(m_className + "." + std::string(event), {m_printer, m_number, 1});
    return answer ? answer->status : S_OK;
}

ErrorInfoSupport FakeIdentity::Support() const {
    const auto own = m_state->supportOf.find(m_interfaceName);
    return own == m_state->supportOf.end() ? m_state->support : own->second;
}

Answer FakeIdentity::Call(std::string_view operation, std::string_view arguments) {
    CheckAlive(operation);
    m_state->journal.AddCall(m_label + "." + std::string(operation) + "(" + std::string(arguments) + ")");
    const int call = ++m_calls.emplace(operation, 0).first->second;
    const Answer* const scripted =
        m_state->script.Find(m_interfaceName + "." + std::string(operation), {m_printer, m_number, call});
    const Answer answer = scripted ? *scripted : Answer{};
    if (answer.hasInformation) {
        SetFakeErrorInformation(m_state, answer.source, answer.description);
    } else {
        SetErrorInfo(0, nullptr);
    }
    if (answer.work) {
        answer.work();
    }
    if (answer.throws) {
        throw std::runtime_error("scripted exception");
    }
    return answer;
}

HRESULT FakeIdentity::CallPlain(std::string_view operation, std::string_view arguments) {
    return Call(operation, arguments).status;
}

HRESULT FakeIdentity::CallForText(std::string_view operation, BSTR* text) {
    *text = nullptr;
    const Answer answer = Call(operation);
    if (FAILED(answer.status) || answer.givesNull) {
        return answer.status;
    }
    const std::string_view noun = operation.substr(std::string_view("Get").size());
    std::wstring given(noun.begin(), noun.end());
    if (!m_printer.empty()) {
        given += L" of " + m_printer;
    }
    *text = TextWatch::Give(answer.text.value_or(given), m_label + "." + std::string(operation));
    return answer.status;
}

HRESULT FakeIdentity::CallForFlag(std::string_view operation, VARIANT_BOOL defaultFlag, VARIANT_BOOL* flag) {
    *flag = VARIANT_FALSE;
    const Answer answer = Call(operation);
    if (SUCCEEDED(answer.status)) {
        *flag = answer.flag.value_or(defaultFlag);
    }
    return answer.status;
}

HRESULT FakeIdentity::CallReserved(std::string_view operation) {
    Call(operation);
    return E_NOTIMPL;
}

std::string FakeIdentity::Show(BSTR text, std::string_view operation) {
    if (!text) {
        return "null";
    }
    const std::string label = m_label + "." + std::string(operation);
    if (!TextWatch::Receive(text, label + " (argument)")) {
        m_state->problems.push_back(label + ": the argument is no BSTR");
        return "not a BSTR";
    }
    return "\"" + Narrow({text, SysStringLen(text)}) + "\"";
}

FakeIdentity* FakeIdentity::FindObject(const VARIANT& value) {
    if (value.vt != VT_DISPATCH || !value.pdispVal) {
        return nullptr;
    }
    const auto found = m_state->objects.find(Query<IUnknown>(*value.pdispVal).Get());
    return found == m_state->objects.end() ? nullptr : found->second;
}

std::string FakeIdentity::Show(const VARIANT& value) {
    switch (value.vt) {
    case VT_ERROR: return "VT_ERROR:" + StatusText(value.scode);
    case VT_EMPTY: return "VT_EMPTY";
    case VT_NULL: return "VT_NULL";
    case VT_DISPATCH: {
        const FakeIdentity* const object = FindObject(value);
        return "VT_DISPATCH:" + (object ? object->Label() : value.pdispVal ? "foreign" : "null");
    }
    default: return "VT_" + std::to_string(value.vt);
    }
}

} // namespace kit
