// kemba.exe where nothing can be written: the exit status is what it always is, and nobody is told.
#include <windows.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "demo/Printers.h"
#include "tests/kit/OutputChannel.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

UniqueHandle Open(const std::wstring& path, DWORD access) {
    SECURITY_ATTRIBUTES attributes = Inheritable();
    return UniqueHandle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                                    OPEN_EXISTING, 0, nullptr));
}

/// A standard output that takes nothing.
struct BadOutput {
    const char* title;
    DWORD error; ///< of the system, when somebody writes there
    UniqueHandle (*open)(const TemporaryFile& file);
};

const BadOutput kBadOutputs[] = {
    {"None", ERROR_INVALID_HANDLE, [](const TemporaryFile&) { return UniqueHandle(); }},
    {"Invalid", ERROR_INVALID_HANDLE,
     [](const TemporaryFile&) { return UniqueHandle(INVALID_HANDLE_VALUE); }},
    {"Unknown", ERROR_INVALID_HANDLE,
     [](const TemporaryFile&) { return UniqueHandle(reinterpret_cast<HANDLE>(0x7FFC)); }},
    {"ReadOnly", ERROR_ACCESS_DENIED,
     [](const TemporaryFile& file) { return Open(file.Path(), GENERIC_READ); }},
    {"Full", ERROR_DISK_FULL, [](const TemporaryFile&) { return Open(L"Z:\\dev\\full", GENERIC_WRITE); }},
    {"ReaderGone", ERROR_NO_DATA,
     [](const TemporaryFile&) {
         SECURITY_ATTRIBUTES attributes = Inheritable();
         HANDLE read = nullptr;
         HANDLE write = nullptr;
         EXPECT_TRUE(CreatePipe(&read, &write, &attributes, 0));
         const UniqueHandle gone(read);
         return UniqueHandle(write);
     }},
};

void PrintTo(const BadOutput& output, std::ostream* out) {
    *out << output.title;
}

class OutputThatFails : public testing::TestWithParam<BadOutput> {
  protected:
    /// Runs kemba.exe with this standard output.
    ProcessResult Run(const Words& words) const {
        ProcessOptions options;
        options.output = m_output.get();
        const ProcessResult run = Kemba(words, options);
        EXPECT_FALSE(run.timedOut);
        EXPECT_EQ(run.errors, "");
        return run;
    }

    const TemporaryFile m_file{"what was there"};
    const UniqueHandle m_output = GetParam().open(m_file);
};

TEST_P(OutputThatFails, FailsForEverybody) {
    if (GetParam().error == ERROR_DISK_FULL && !m_output) {
        GTEST_SKIP() << "there is no device here that is always full";
    }
    DWORD written = 0;
    EXPECT_FALSE(WriteFile(m_output.get(), "x", 1, &written, nullptr));
    EXPECT_EQ(GetLastError(), GetParam().error);
}

TEST_P(OutputThatFails, LeavesTheStatusAsItIs) {
    EXPECT_EQ(Run({}).status, 1U);
    EXPECT_EQ(Run({L"/p"}).status, 1U);
    EXPECT_EQ(Run({L"help", L"action"}).status, 0U);
    EXPECT_EQ(Run({L"bogus"}).status, 2U);
    EXPECT_EQ(Run({L"/q", L"bogus"}).status, 2U);
    EXPECT_EQ(Run({L"/p", L"Nobody", L"get", L"status"}).status, 2U);
    EXPECT_EQ(Run({L"version", L"os"}).status, 0U);
    EXPECT_EQ(m_file.Read(), "what was there");
}

TEST_P(OutputThatFails, DoesNotKeepTheWorkFromBeingDone) {
    const demo::Printer printer({.comment = L"by the door"});
    EXPECT_EQ(Run({L"/p", printer.Name(), L"set", L"comment", L"at the window"}).status, 0U);
    EXPECT_EQ(Run({L"/p", printer.Name(), L"get", L"comment"}).status, 0U);
    const ProcessResult seen = Kemba({L"/p", printer.Name(), L"get", L"comment"});
    EXPECT_EQ(seen.output, Framed("Get", {Printed(printer.Name()) + ": at the window"}));
    EXPECT_EQ(m_file.Read(), "what was there");
}

INSTANTIATE_TEST_SUITE_P(Programs, OutputThatFails, testing::ValuesIn(kBadOutputs),
                         [](const auto& row) { return std::string(row.param.title); });

} // namespace
