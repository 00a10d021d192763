// Every fault that a server can have in one run of a command, made from the journal of a run without any.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/kit/FakeServer.h"
#include "tests/kit/Printed.h"

namespace kit {

/// One line of a journal that a fault can strike: an event of an activation, or a call.
struct Step {
    std::string className; ///< "DriverAutomation" for one
    int object = 0;        ///< its number
    std::string event;     ///< "new", "Run", "QueryInterface", or the called operation's name
    int call = 0;          ///< which such step of the object it is, from 1
    bool isCall = false;
    std::string shown; ///< the line without the numbers of objects

    /// "IDriverAutomation.GetComment" for one; an operation's name if it is a call.
    std::string Operation() const { return "I" + className + "." + event; }
    /// Whether it belongs to the first printer, or to no printer.
    bool IsOfTheFirst() const { return object == 1 || className == "VersionInformation"; }
};

std::vector<Step> StepsOf(const Lines& journal);

/// The lines of a journal without the numbers of objects, which depend on what went wrong before.
Lines WithoutNumbers(const Lines& lines);

/// What a fault is to the client.
enum class Effect {
    None,     ///< all is well
    Refusal,  ///< an automation failure
    Breakage, ///< a failure of another kind
    NoText    ///< no failure: an operation that gives a text gives none
};

struct Fault {
    std::string title;
    Effect effect = Effect::Refusal;
    HRESULT status = S_OK; ///< of a refusal, as the client raises it
    Lines information{};   ///< what the error printer shows below it
    std::function<void(FakeServer&)> arm;
};

/// All faults that can strike at the step.
std::vector<Fault> FaultsAt(const Step& step);

} // namespace kit
