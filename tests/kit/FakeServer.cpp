// Registration, script and verdict of the fake server.
#include "tests/kit/FakeServer.h"

#include <objbase.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/kit/FakeClassFactory.h"
#include "tests/kit/FakeIdentity.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"
#include "tests/kit/TextWatch.h"

namespace kit {
namespace {

std::string Target(FakeClass which, std::string_view event) {
    return std::string(NameOf(which)) + "." + std::string(event);
}

Answer Failing(HRESULT status) {
    Answer answer;
    answer.status = status;
    return answer;
}

} // namespace

FakeServer::FakeServer() : m_state(std::make_shared<ServerState>()), m_runtime(m_state) {
    TextWatch::Start();
    for (const FakeClass which : kAllClasses) {
        m_registrations[static_cast<std::size_t>(which)] = RegisterFakeClass(m_state, which);
    }
}

FakeServer::~FakeServer() {
    for (const FakeClass which : kAllClasses) {
        Unregister(which);
    }
    SetErrorInfo(0, nullptr);
    m_state->isOpen = false;
    TextWatch::Forget();
    m_state->released.clear(); // they hold the state that holds them
}

Rule& FakeServer::AddRule(std::string_view operation, std::initializer_list<Gives> kinds, Answer answer) {
    const Operation* const known = FindOperation(operation);
    if (!known) {
        ADD_FAILURE() << operation << " is no operation of the contract";
    } else if (kinds.size() > 0 && std::ranges::find(kinds, known->WhatItGives()) == kinds.end()) {
        ADD_FAILURE() << operation << " gives nothing of that kind";
    }
    return m_state->script.Add(std::string(operation), std::move(answer));
}

Rule& FakeServer::Fail(std::string_view operation, HRESULT status) {
    return AddRule(operation, {}, Failing(status));
}

Rule& FakeServer::Throw(std::string_view operation) {
    Answer answer;
    answer.throws = true;
    return AddRule(operation, {}, std::move(answer));
}

Rule& FakeServer::GiveText(std::string_view operation, std::wstring text) {
    Answer answer;
    answer.text.emplace(std::move(text));
    return AddRule(operation, {Gives::Text}, std::move(answer));
}

Rule& FakeServer::GiveNull(std::string_view operation) {
    Answer answer;
    answer.givesNull = true;
    return AddRule(operation, {Gives::Text, Gives::Object}, std::move(answer));
}

Rule& FakeServer::GiveFlag(std::string_view operation, VARIANT_BOOL flag) {
    Answer answer;
    answer.flag = flag;
    return AddRule(operation, {Gives::Flag}, std::move(answer));
}

Rule& FakeServer::Do(std::string_view operation, std::function<void()> work) {
    Answer answer;
    answer.work = std::move(work);
    return AddRule(operation, {}, std::move(answer));
}

Rule& FakeServer::FailActivation(FakeClass which, HRESULT status) {
    return m_state->script.Add(Target(which, "CreateInstance"), Failing(status));
}

Rule& FakeServer::FailRun(FakeClass which, HRESULT status) {
    return m_state->script.Add(Target(which, "Run"), Failing(status));
}

Rule& FakeServer::LackInterface(FakeClass which) {
    return m_state->script.Add(Target(which, "QueryInterface"), Failing(E_NOINTERFACE));
}

void FakeServer::Unregister(FakeClass which) {
    DWORD& registration = m_registrations[static_cast<std::size_t>(which)];
    if (registration != 0) {
        CoRevokeClassObject(std::exchange(registration, 0));
    }
}

void FakeServer::SupportErrorInfo(ErrorInfoSupport support) {
    m_state->support = support;
}

void FakeServer::SupportErrorInfo(std::string_view interfaceName, ErrorInfoSupport support) {
    if (std::ranges::find(AllOperations(), interfaceName, &Operation::Interface) == AllOperations().end()) {
        ADD_FAILURE() << interfaceName << " is no interface of the contract";
    }
    m_state->supportOf[std::string(interfaceName)] = support;
}

Lines FakeServer::Faults() {
    SetErrorInfo(0, nullptr);
    Lines faults = m_state->problems;
    for (const auto& [identity, object] : m_state->objects) {
        faults.push_back("not released: " + object->Label());
    }
    for (const std::string& label : m_state->errorInformation) {
        faults.push_back("not released: " + label);
    }
    for (const std::string& label : TextWatch::Live()) {
        faults.push_back("not freed: text of " + label);
    }
    for (const std::string& label : TextWatch::FreedTwice()) {
        faults.push_back("freed twice: text of " + label);
    }
    if (m_state->factoryLocks != 0) {
        faults.push_back("locks of class factories: " + std::to_string(m_state->factoryLocks));
    }
    if (m_runtime.Balance() != 0) {
        faults.push_back("initialisations of the runtime not undone: " + std::to_string(m_runtime.Balance()));
    }
    return faults;
}

} // namespace kit
