// Sixteen runs of kemba.exe at the same time, each as if it were alone.
#include <windows.h>
#include <objbase.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "demo/Printers.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/programs/Clients.h"
#include "tests/programs/HeldServer.h"

using namespace kit;
using namespace std::chrono_literals;

namespace {

constexpr int kRuns = 16;

struct Expected {
    Words words;
    std::string output; ///< all bytes of standard output, and none of standard error
    DWORD status;
};

TEST(SixteenAtOnce, ArePrintedAndEndAsEachAlone) {
    const demo::Printer one({.comment = L"by the door"});
    const demo::Printer two({.comment = L"at the window, 50% %1"});
    const std::string oneName = Printed(one.Name());
    const std::string twoName = Printed(two.Name());
    const Expected expected[] = {
        {{L"/p", one.Name(), L"get", L"comment"}, Framed("Get", {oneName + ": by the door"}), 0},
        {{L"/p", one.Name(), L"/p", two.Name(), L"get", L"comment"},
         Framed("Get", {oneName + ": by the door", twoName + ": at the window, 50% %1"}),
         0},
        {{L"/p", two.Name(), L"get", L"status"}, Framed("Get", {twoName + ": Ready"}), 0},
        {{L"/p", two.Name(), L"get", L"colour"}, Framed("Get", {"Argument 'colour' is invalid."}), 0},
        {{L"/p", one.Name(), L"send", L"C:\\Nowhere"}, Framed("Send", {"File does not exist."}), 2},
        {{L"/p", L"Nobody", L"get", L"status"},
         "The printer 'Nobody' is not found.\r\nNo printers selected for this operation.\r\n",
         2},
        {{L"bogus"}, "The command 'bogus' is unknown.\r\n", 2},
        {{L"/q", L"/p", one.Name(), L"get", L"comment"}, "", 0},
    };
    {
        const Apartment apartment;
        const HeldServer server(one.Name(), 100s);
        Clients clients;
        for (int run = 0; run < kRuns; ++run) {
            clients.Start(L"kemba.exe", expected[run % std::size(expected)].words);
        }
        int run = 0;
        for (const ProcessResult& result : clients.Finish(60s)) {
            SCOPED_TRACE(run);
            const Expected& each = expected[run++ % std::size(expected)];
            EXPECT_FALSE(result.timedOut);
            EXPECT_EQ(result.output, each.output);
            EXPECT_EQ(result.status, each.status);
        }
        EXPECT_EQ(run, kRuns);
        EXPECT_TRUE(server.IsStillTheOne());
    }
}

} // namespace
