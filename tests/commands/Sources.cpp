// Source files as texts.
#include "tests/commands/Sources.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ios>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace kit {

std::string ReadSource(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string WithoutComments(const std::string& source) {
    static const std::regex comment("//[^\\n]*");
    return std::regex_replace(source, comment, "");
}

std::vector<std::string> SourcesIn(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".cpp" || extension == ".h") {
            paths.push_back(entry.path().string());
        }
    }
    EXPECT_FALSE(paths.empty()) << folder;
    return paths;
}

std::vector<std::string> FindAll(const std::string& text, const std::string& expression) {
    const std::regex pattern(expression);
    std::vector<std::string> found;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), pattern);
         match != std::sregex_iterator(); ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

} // namespace kit
