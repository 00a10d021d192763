// What GoogleTest programs print.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/acceptance/Checks.h"

namespace acceptance {

/// The full names of the tests that a program lists when it is asked with --gtest_list_tests.
std::vector<std::string> ReadTestList(std::string_view output);

/// The tests that a program has begun, in their order, with what they said: a failure's text, or why a test
/// was skipped. A test without an end has failed, and `howItEnded` says how the process ended.
std::vector<Check> ReadTestOutput(std::string_view output, const std::string& howItEnded);

} // namespace acceptance
