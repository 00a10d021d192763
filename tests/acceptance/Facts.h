// What a report says of the machine.
#pragma once

#include <string>
#include <vector>

#include "tests/acceptance/Plan.h"

namespace acceptance {

/// What Windows says of itself; texts may be empty.
struct SystemVersion {
    std::string product; ///< "Windows 10 Pro"
    std::string release; ///< "22H2"
    unsigned major = 0;
    unsigned minor = 0;
    unsigned build = 0;
    unsigned revision = 0;
};

/// In one line. A product that still calls itself Windows 10 where its build is that of Windows 11 is called
/// that.
std::string VersionLine(const SystemVersion& version);

Machine DescribeMachine();

/// The report's first lines, for the programs in the folder.
std::vector<std::string> DescribeRun(const Machine& machine, const std::wstring& folder);

} // namespace acceptance
