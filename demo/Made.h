// A record of what was made on a machine, for whoever takes it back when the maker could not.
//
// A line is a word for the kind, a blank and the name, in UTF-8. It is written before the thing is made, and
// stays when that is gone: what is there no more is passed over.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace demo {

/// The environment variable with the record's path; without it nothing is recorded.
inline constexpr wchar_t kRecordVariable[] = L"KEMBA_MADE";

/// Kinds of what is made.
inline constexpr char kMadePrinter[] = "printer";
inline constexpr char kMadePort[] = "port";     // on Windows: a local port that is a file
inline constexpr char kMadeTarget[] = "target"; // on Wine: where a port's output goes
inline constexpr char kMadeDriver[] = "driver";
inline constexpr char kMadeFile[] = "file";
inline constexpr char kMadeClass[] = "class"; // registered for the machine by a test; its identity

/// Where such classes are.
inline const std::wstring kOwnClassesKey = L"SOFTWARE\\Classes\\CLSID\\";

struct Made {
    std::string kind;
    std::wstring name;

    bool operator==(const Made&) const = default;
};

/// Adds to the record. Throws std::runtime_error when there is a record that cannot be written: then the
/// thing must not be made.
void RememberMade(std::string_view kind, const std::wstring& name);

/// What a record's bytes say, in their order. A last line that was cut off is left out.
std::vector<Made> ReadMade(std::string_view record);

} // namespace demo
