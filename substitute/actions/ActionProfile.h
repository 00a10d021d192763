// Action profiles: the bytes that make a printer carry out an action.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kemba::substitute {

/// The bytes of each action, by its code.
using ActionProfile = std::map<LONG, std::string>;

/// Reads a profile's text. `name` stands for the file in the reason of a failure, beside the line's number.
/// Throws Failure (ERROR_INVALID_DATA) for anything that it does not understand.
ActionProfile ParseActionProfile(std::string_view text, const std::wstring& name);

/// The folder of profiles: the text value "ActionProfiles" of the registry key, which has to be an absolute
/// path, or without that value the folder "profiles" beside the program. Throws Failure.
std::wstring ActionProfileFolder(HKEY root, const wchar_t* key);

/// The profiles of one folder, read afresh each time.
class ActionProfiles {
  public:
    /// A file larger than that is refused.
    static constexpr std::size_t kLargestFile = std::size_t{64} * 1024;

    /// `folder` is asked each time; it may throw Failure.
    explicit ActionProfiles(std::function<std::wstring()> folder) : m_folder(std::move(folder)) {}

    /// The printer's profile, or else its driver's: the file "NAME.profile", in whose name "_" stands for
    /// every character that no file name may have. Nothing when there is neither. Throws Failure.
    std::optional<ActionProfile> Find(const std::wstring& printer, const std::wstring& driver) const;

  private:
    const std::function<std::wstring()> m_folder;
};

} // namespace kemba::substitute
