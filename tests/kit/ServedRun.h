// The fixture of tests that run whole command lines against the fake server.
//
//     class KembaRun : public kit::ServedRun {
//       protected:
//         KembaRun() : ServedRun(kemba::RunKemba) {}
//     };
//
//     TEST_F(KembaRun, ShowsTheCommentOfAPrinter) {
//         const demo::Printer printer;
//         EXPECT_EQ(Run({L"/p", printer.Name(), L"get", L"comment"}).status, 0);
//     }
#pragma once

#include "tests/kit/FakeServer.h"
#include "tests/kit/WholeRun.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kit {

/// A fake server, and an entry point whose every run must leave nothing behind: see FakeServer::Faults.
class ServedRun : public testing::Test {
  protected:
    explicit ServedRun(EntryPoint entryPoint) : m_entryPoint(std::move(entryPoint)) {}

    /// Runs the program with the words after its path; faults of the run fail the test.
    RunResult Run(const std::vector<std::wstring>& words) {
        RunResult result = RunWords(m_entryPoint, words);
        EXPECT_EQ(m_server.Faults(), Lines{});
        return result;
    }

    FakeServer m_server;

  private:
    EntryPoint m_entryPoint;
};

} // namespace kit
