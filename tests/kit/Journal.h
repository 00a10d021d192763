// What a client did to the fake server, line by line.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kit {

/// An ordered list of readable lines in UTF-8.
///
/// A line is either a call, `DriverAutomation#1.PutPrinterName("Label A")`, or an event of an object's life:
/// `new DriverAutomation#1`, `DriverAutomation#1.Run()`,
/// `DriverAutomation#1.QueryInterface(IDriverAutomation)`,
/// `DriverAutomation#1.InterfaceSupportsErrorInfo(IDriverAutomation)`, `ErrorInformation#1.GetSource()` and
/// `~DriverAutomation#1`. Objects are numbered by class from 1 in the order of their activation.
class Journal {
  public:
    /// Everything, in order.
    std::vector<std::string> Lines() const { return Select(false); }
    /// The calls alone: what was asked of the server, without the life of the objects.
    std::vector<std::string> Calls() const { return Select(true); }

    void AddCall(std::string line) {
        if (m_follower) {
            m_follower(line);
        }
        m_entries.emplace_back(true, std::move(line));
    }
    void AddEvent(std::string line) { m_entries.emplace_back(false, std::move(line)); }
    void Clear() { m_entries.clear(); }

    /// Hands each further call to the follower as well, before it is done.
    void Follow(std::function<void(const std::string&)> follower) { m_follower = std::move(follower); }

  private:
    std::vector<std::string> Select(bool callsOnly) const;

    std::vector<std::pair<bool, std::string>> m_entries; // is a call, line
    std::function<void(const std::string&)> m_follower;
};

} // namespace kit
