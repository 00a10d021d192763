// The message keys in the sources against the sections of the catalogue.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "messages/TextResource.h"
#include "tests/commands/Sources.h"

using namespace kit;

namespace {

using Keys = std::set<std::string>;

Keys UsedKeys() {
    Keys keys;
    for (const char* const folder : {"commands", "cli", "cli/main", "automation", "messages"}) {
        for (const std::string& path : SourcesIn(folder)) {
            for (const std::string& key :
                 FindAll(WithoutComments(ReadSource(path)), "\"((help|error|text):\\w+)\"")) {
                keys.insert(key);
            }
        }
    }
    return keys;
}

Keys Sections() {
    Keys keys;
    for (const std::string& key : FindAll(ReadSource("messages/KEMBA[ENU].TXT"), "#(\\w+:\\w+)")) {
        keys.insert(key);
    }
    return keys;
}

/// Keys without a section, on purpose: an empty line is what they show.
const Keys kMissingOnPurpose = {"error:ActionNotSupported", "error:COM_Descripion"};

/// Sections that nobody asks for.
const Keys kUnused = {"error:COM_Description", "error:CommandInvalid"};

TEST(CatalogueKeys, OfTheSourcesHaveASectionButForTwo) {
    const Keys used = UsedKeys();
    ASSERT_GT(used.size(), 30U);
    TextResource catalogue;
    for (const std::string& key : used) {
        EXPECT_EQ(catalogue.GetText(key.c_str()).IsEmpty(), kMissingOnPurpose.contains(key))
            << key << ": give it a section in messages/KEMBA[ENU].TXT";
    }
    for (const std::string& key : kMissingOnPurpose) {
        EXPECT_TRUE(used.contains(key)) << key;
    }
}

TEST(CatalogueKeys, OfTheSectionsAreUsedButForTwo) {
    Keys used = UsedKeys();
    EXPECT_TRUE(used.contains("help:Queue")) << "written with a capital letter, on purpose";
    used.insert("help:queue");
    const Keys sections = Sections();
    ASSERT_GT(sections.size(), 30U);
    for (const std::string& key : sections) {
        EXPECT_EQ(used.contains(key), !kUnused.contains(key)) << key << ": nobody prints it";
    }
}

} // namespace
