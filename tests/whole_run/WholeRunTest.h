// The ground of all tests that run whole command lines through the entry point.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "demo/Printers.h"
#include "tests/kit/FakeServer.h"
#include "tests/kit/Holdings.h"
#include "tests/kit/Printed.h"
#include "tests/kit/WholeRun.h"

namespace kit {

/// Runs the entry point on the words as a fresh process would: the process-wide settings start empty.
RunResult RunAfresh(const Words& words);

/// Sees that what the program gets it gives back, up to the end of the test: heap blocks, texts, registry
/// keys, handles, printers. Its process-wide objects do not count: runs of its own make them before.
class Balance {
  public:
    Balance();
    Balance(const Balance&) = delete;
    Balance& operator=(const Balance&) = delete;
    ~Balance();

  private:
    Holdings m_before;
};

/// A scripted server and two printers; every run must leave the server with nothing alive and nothing
/// unfreed.
class WholeRunTest : public testing::Test {
  protected:
    /// RunAfresh, and a look at the server's faults.
    RunResult Run(const Words& words);
    /// The same for the first printer, or for both, which "/p" options before the words select.
    RunResult RunOnFirst(const Words& words);
    RunResult RunOnBoth(const Words& words);

    const Balance balance; // first made and last gone: nothing of the others may stay either
    FakeServer server;
    const demo::Printer first;
    const demo::Printer second;
    const std::string firstName = Printed(first.Name());
    const std::string secondName = Printed(second.Name());
};

} // namespace kit
