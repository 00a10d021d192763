// The project's own source files as texts, and what is to be found in them.
#pragma once

#include <string>
#include <vector>

namespace kit {

/// The file's text; the path is relative to the source root, where tests run. Fails the test when there is
/// none.
std::string ReadSource(const std::string& path);

/// The text without what stands behind two slashes.
std::string WithoutComments(const std::string& source);

/// The paths of the C++ files of a folder, headers too.
std::vector<std::string> SourcesIn(const std::string& folder);

/// What the first group of the expression matches, for every match in the text, in order.
std::vector<std::string> FindAll(const std::string& text, const std::string& expression);

} // namespace kit
