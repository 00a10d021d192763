// Faults from a clean run's journal.
#include "tests/whole_run/FaultTable.h"

#include <rpc.h>

#include <algorithm>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ServerState.h"

namespace kit {
namespace {

constexpr HRESULT kServerFailed = static_cast<HRESULT>(0x80080005);
constexpr HRESULT kOwnStatus = static_cast<HRESULT>(0x80040205);

FakeClass ClassOf(const Step& step) {
    return *std::ranges::find(kAllClasses, step.className,
                              [](FakeClass which) { return std::string(NameOf(which)); });
}

std::vector<Fault> FaultsOfCreation(const Step& step) {
    std::vector<Fault> faults;
    const struct {
        const char* title;
        HRESULT status;
        HRESULT raised;
    } rows[] = {
        {"the class is not registered", REGDB_E_CLASSNOTREG, REGDB_E_CLASSNOTREG},
        {"the server fails to start", kServerFailed, kServerFailed},
        {"the creation misses an interface", E_NOINTERFACE, E_POINTER},
    };
    for (const auto& row : rows) {
        faults.push_back({.title = row.title,
                          .status = row.raised,
                          .arm = [step, status = row.status](FakeServer& server) {
                              server.FailActivation(ClassOf(step), status).ForObject(step.object);
                          }});
    }
    return faults;
}

std::vector<Fault> FaultsOfRunning(const Step& step) {
    std::vector<Fault> faults;
    for (const auto& [status, raised] : {std::pair(E_UNEXPECTED, E_UNEXPECTED), {E_NOINTERFACE, E_POINTER}}) {
        faults.push_back(
            {.title = status == raised ? "the object does not run" : "running the object misses an interface",
             .status = raised,
             .arm = [step, status](FakeServer& server) {
                 server.FailRun(ClassOf(step), status).ForObject(step.object);
             }});
    }
    return faults;
}

Fault MissingInterface(const Step& step) {
    return {.title = "the interface is missing", .status = E_POINTER, .arm = [step](FakeServer& server) {
                server.LackInterface(ClassOf(step)).ForObject(step.object);
            }};
}

struct RefusalRow {
    const char* title;
    HRESULT status = E_FAIL;
    bool hasInformation = false;
    std::optional<std::wstring> source{};
    std::optional<std::wstring> description{};
    ErrorInfoSupport support = ErrorInfoSupport::Yes;
    Lines printed{};
};

const RefusalRow kRefusals[] = {
    {.title = "refused without information", .status = E_ACCESSDENIED},
    {.title = "the server is gone",
     .status = HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
     .support = ErrorInfoSupport::Absent},
    {.title = "the object is cut off", .status = RPC_E_DISCONNECTED, .support = ErrorInfoSupport::Absent},
    {.title = "refused with information",
     .status = kOwnStatus,
     .hasInformation = true,
     .source = L"Driver",
     .description = L"Out of paper",
     .printed = {"Source: Driver", ""}}, // the description's key is no section of the catalogue
    {.title = "refused with a source",
     .hasInformation = true,
     .source = L"Driver",
     .description = L"",
     .printed = {"Source: Driver"}},
    {.title = "refused with a description",
     .hasInformation = true,
     .description = L"Out of paper",
     .printed = {""}},
    {.title = "refused with empty information", .hasInformation = true},
    {.title = "refused with information of others",
     .hasInformation = true,
     .source = L"Driver",
     .description = L"x",
     .support = ErrorInfoSupport::No},
    {.title = "refused by an object without information",
     .hasInformation = true,
     .source = L"Driver",
     .description = L"x",
     .support = ErrorInfoSupport::Absent},
};

std::vector<Fault> FaultsOfCall(const Step& step) {
    const std::string operation = step.Operation();
    std::vector<Fault> faults;
    for (const RefusalRow& row : kRefusals) {
        faults.push_back(
            {.title = row.title,
             .status = row.status,
             .information = row.printed,
             .arm = [=](FakeServer& server) {
                 server.SupportErrorInfo(row.support);
                 Rule& rule = server.Fail(operation, row.status).ForObject(step.object).ForCall(step.call);
                 if (row.hasInformation) {
                     rule.WithInformation(row.source, row.description);
                 }
             }});
    }
    faults.push_back({.title = "throws", .effect = Effect::Breakage, .arm = [=](FakeServer& server) {
                          server.Throw(operation).ForObject(step.object).ForCall(step.call);
                      }});
    const Gives gives = FindOperation(operation)->WhatItGives();
    if (gives == Gives::Text || gives == Gives::Object) {
        faults.push_back({.title = "gives nothing",
                          .effect = gives == Gives::Text ? Effect::NoText : Effect::Refusal,
                          .status = E_POINTER,
                          .arm = [=](FakeServer& server) {
                              server.GiveNull(operation).ForObject(step.object).ForCall(step.call);
                          }});
    }
    if (gives == Gives::Text) {
        faults.push_back(
            {.title = "gives an empty text", .effect = Effect::NoText, .arm = [=](FakeServer& server) {
                 server.GiveText(operation, L"").ForObject(step.object).ForCall(step.call);
             }});
    }
    return faults;
}

} // namespace

Lines WithoutNumbers(const Lines& lines) {
    static const std::regex number("#[0-9]+");
    Lines result;
    for (const std::string& line : lines) {
        result.push_back(std::regex_replace(line, number, ""));
    }
    return result;
}

std::vector<Step> StepsOf(const Lines& journal) {
    const std::regex creation("new (\\w+)#(\\d+)");
    const std::regex event("(\\w+)#(\\d+)\\.(\\w+)\\([^]*");
    std::map<std::string, int> counts;
    std::vector<Step> steps;
    for (const std::string& line : journal) {
        std::smatch parts;
        Step step;
        if (std::regex_match(line, parts, creation)) {
            step.event = "new";
        } else if (std::regex_match(line, parts, event)) {
            step.event = parts[3];
        } else {
            continue;
        }
        step.className = parts[1];
        step.object = std::stoi(parts[2]);
        step.call = ++counts[parts.str(1) + parts.str(2) + step.event];
        step.isCall = FindOperation(step.Operation()) != nullptr;
        step.shown = WithoutNumbers({line}).front();
        steps.push_back(step);
    }
    return steps;
}

std::vector<Fault> FaultsAt(const Step& step) {
    if (step.event == "new") {
        return FaultsOfCreation(step);
    }
    if (step.event == "Run") {
        return FaultsOfRunning(step);
    }
    if (step.event == "QueryInterface") {
        return {MissingInterface(step)};
    }
    return step.isCall ? FaultsOfCall(step) : std::vector<Fault>{};
}

} // namespace kit
