// The catalogue: every text as it must read, and the rules of the lookup.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "core/OString.h"
#include "messages/TextResource.h"
#include "tests/kit/TemporaryFile.h"

using namespace kit;

namespace {

std::string TextOf(const OString& key) {
    return TextResource().GetText(key).Narrow();
}

std::string CatalogueFile() {
    return ReadBytes(L"messages/KEMBA[ENU].TXT");
}

std::string_view CatalogueResource() {
    const WORD english = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    const HRSRC found = FindResourceExW(nullptr, L"BINARY", L"KEMBA[ENU].TXT", english);
    if (!found) {
        return {};
    }
    const auto* const bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
    return {bytes, SizeofResource(nullptr, found)};
}

/// The catalogue's sections by another road than the program's: a body is what stands between two headers.
std::map<std::string, std::string> SectionsOf(std::string_view catalogue) {
    std::map<std::string, std::string> sections;
    std::size_t at = 0;
    while (at < catalogue.size()) {
        const std::size_t lineEnd = catalogue.find("\r\n", at);
        const std::size_t next = std::min(catalogue.find("\r\n#", lineEnd), catalogue.size());
        std::string_view body = catalogue.substr(lineEnd + 2, next - std::min(next, lineEnd + 2));
        body = body.substr(0, body.find_last_not_of(" \t\r\n") + 1);
        sections.emplace(catalogue.substr(at + 1, lineEnd - at - 1), body);
        at = next + 2;
    }
    return sections;
}

/// Looks sections up in bytes of the test's own.
struct Lookup : TextResource {
    std::string operator()(std::string_view catalogue, const char* key) {
        return FindSection(catalogue.data(), catalogue.data() + catalogue.size(), key).Narrow();
    }
};

struct Message {
    const char* key;
    const char* body;
};

constexpr Message kMessages[] = {
    {"error:COM", "*** COM Exception ***\r\nError: %1"},
    {"error:COM_Source", "Source: %1"},
    {"error:COM_Description", "Description: %1"},
    {"error:NoHelp", "No help exists for '%1' command."},
    {"error:NumberOfArguments", "Incorrect number of arguments."},
    {"error:Unspecified", "Unspecified error."},
    {"error:FileNotFound", "File does not exist."},
    {"error:CommandUnknown", "The command '%1' is unknown."},
    {"error:CommandNotSupported", "The command is unsupported on this printer."},
    {"error:CommandNotSpecified", "Error: No command specified."},
    {"error:CommandInvalid", "Error: Invalid command specified."},
    {"error:ActionUndefined", "Action is undefined."},
    {"error:PrinterNotFound", "The printer '%1' is not found."},
    {"error:NoPrinterSelected", "No printers selected for this operation."},
    {"error:MultiplePrintersNotSupported", "Multiple printers not supported for this command."},
    {"error:InvalidArgument", "Argument '%1' is invalid."},
    {"text:FinishProcessingCommand", "Finished processing command."},
    {"text:Processing", "Executing '%1' command."},
    {"text:ActionIsSupported", "Action '%1' is supported."},
    {"text:ActionNotSupported", "Action '%1' is not supported."},
    {"text:ActionDisplayInterface", "Action '%1' is supported and displays a user interface."},
    {"text:ActionComplete", "Action Completed."},
    {"text:ExportSettingsExported", "Settings exported for '%1'."},
    {"text:ImportSettingsImported", "Settings imported for '%1'."},
    {"text:SettingsReset", "Settings reset for '%1'."},
    {"text:FileSent", "File sent to '%1'."},
    {"text:Unknown", "Unknown"},
};

struct HelpPage {
    const char* key;
    const char* firstLine;
    const char* lastLine;
};

constexpr HelpPage kHelpPages[] = {
    {"help:action", "Action -- Performs miscellaneous printer utility functions.",
     "           No action is taken by the driver."},
    {"help:export", "Export -- Saves printer driver settings to a file.",
     "   This command does not support multiple printers."},
    {"help:get", "Get -- Get printer information from one or more printers.",
     "      Status     - Displays the printer's current status."},
    {"help:import", "Import -- Loads printer driver settings from a file.",
     "   file - The name of the file to import the settings from."},
    {"help:queue", "Queue -- Performs an action on the specified printer queue(s).",
     "      Purge   - Purges all jobs from the printer queue."},
    {"help:send", "Send -- Sends a file to the specified printer(s).",
     "   file - The path of the file to send to the printer."},
    {"help:set", "Set -- Set printer information to one or more printers.",
     "      ShareName  - Shares the printer with the specified share name."},
    {"help:settings", "Settings -- Performs administration of driver settings.",
     "      reset  - Reset the driver to its default settings."},
    {"help:version", "Version -- Displays version information for the driver or DAL.",
     "      os        - Displays the operating system version."},
    {"help:help", "KEMBA - Brandle Driver Automation Layer",
     "   kemba help usage        Generic command line arguments."},
    {"help:commands", "Commands:", "   version     Gets version information."},
    {"help:usage", "KEMBA usage:", "   command to see if it supports multiple printers."},
};

TEST(TextResource, EveryErrorAndTextMessageReadsAsItMust) {
    for (const Message& message : kMessages) {
        SCOPED_TRACE(message.key);
        EXPECT_EQ(TextOf(message.key), message.body);
    }
}

TEST(TextResource, EveryHelpPageBeginsAndEndsAsItMust) {
    for (const HelpPage& page : kHelpPages) {
        SCOPED_TRACE(page.key);
        const std::string text = TextOf(page.key);
        EXPECT_EQ(text.substr(0, text.find("\r\n")), page.firstLine);
        EXPECT_EQ(text.substr(text.rfind('\n') + 1), page.lastLine);
    }
}

TEST(TextResource, TheResourceIsTheTextFileByteForByteStoredAsEnglish) {
    EXPECT_EQ(CatalogueResource(), CatalogueFile());
    EXPECT_EQ(CatalogueResource().size(), 7270U) << "correct the size when you change a text on purpose";
}

TEST(TextResource, EverySectionOfTheFileIsFetched) {
    const auto sections = SectionsOf(CatalogueFile());
    EXPECT_FALSE(sections.empty());
    for (const auto& [key, body] : sections) {
        SCOPED_TRACE(key);
        EXPECT_EQ(TextOf(key.c_str()), body);
        const auto isKey = [&](const auto& row) { return row.key == key; };
        EXPECT_TRUE(std::ranges::any_of(kMessages, isKey) || std::ranges::any_of(kHelpPages, isKey))
            << "give it a row in " << __FILE__;
    }
}

TEST(TextResource, KeysAreFoundIgnoringCase) {
    EXPECT_EQ(TextOf("error:COMMANDUNKNOWN"), "The command '%1' is unknown.");
    EXPECT_EQ(TextOf("help:Queue"), TextOf("help:queue"));
    EXPECT_NE(TextOf("help:Queue"), "");
}

TEST(TextResource, AKeyMayBeNarrowOrWide) {
    EXPECT_EQ(TextOf(L"text:Unknown"), "Unknown");
    EXPECT_EQ(TextOf("text:Unknown"), "Unknown");
}

TEST(TextResource, AKeyThatIsAPrefixOfOthersFindsItsOwnSection) {
    EXPECT_EQ(TextOf("error:COM"), "*** COM Exception ***\r\nError: %1");
    EXPECT_EQ(TextOf("error:CO"), "");
}

TEST(TextResource, AKeyWithATrailingBlankIsNotFound) {
    EXPECT_EQ(TextOf("error:COM "), "");
}

TEST(TextResource, EmptyAndUnknownKeysGiveAnEmptyText) {
    EXPECT_EQ(TextOf(""), "");
    EXPECT_EQ(TextOf("error:COM_Descripion"), "");
    EXPECT_EQ(TextOf("error:ActionNotSupported"), "");
}

TEST(TextResource, TheLastSectionEndsWithTheResource) {
    EXPECT_EQ(TextOf("text:Unknown"), "Unknown");
}

TEST(TextResource, TheTabAtTheEndOfTheGetPageIsTrimmedAway) {
    const std::string text = TextOf("help:get");
    EXPECT_EQ(text.back(), '.');
    EXPECT_NE(CatalogueFile().find(".\r\n\t\r\n"), std::string::npos);
}

TEST(TextResource, BlanksAndEmptyLinesInsideABodyStay) {
    EXPECT_EQ(Lookup()("#a\r\n\r\n  one \r\n\t\r\n two \t\r\n\r\n#b\r\n", "a"), "\r\n  one \r\n\t\r\n two");
}

TEST(TextResource, AnEmptyBodyGivesAnEmptyText) {
    EXPECT_EQ(Lookup()("#a\r\n\r\n#b\r\nB\r\n", "a"), "");
    EXPECT_EQ(Lookup()("#a", "a"), "");
}

TEST(TextResource, AHeaderLineWithATrailingBlankIsNotFound) {
    EXPECT_EQ(Lookup()("#a \r\nwrong\r\n#a\r\nright\r\n", "a"), "right");
}

TEST(TextResource, NothingElseIsTakenOffAHeaderOrABody) {
    for (char byte = '!'; byte <= '~'; ++byte) {
        SCOPED_TRACE(byte);
        EXPECT_EQ(Lookup()(std::string("#a") + byte + "\r\nwrong\r\n#a\r\nright\r\n", "a"), "right");
        EXPECT_EQ(Lookup()(std::string("#a\r\none") + byte + " \t\r\n\r\n", "a"), std::string("one") + byte);
    }
}

TEST(TextResource, ALineOfALoneHashEndsABody) {
    EXPECT_EQ(Lookup()("#a\r\none\r\n#\r\ntwo\r\n", "a"), "one");
}

TEST(TextResource, AHashFurtherInALineIsText) {
    EXPECT_EQ(Lookup()("#a\r\n #one\r\n", "a"), " #one");
}

TEST(TextResource, LinesMayEndInALineFeedAlone) {
    EXPECT_EQ(Lookup()("#a\none\ntwo\n#b\n", "a"), "one\ntwo");
}

TEST(TextResource, ALongLineIsReadInPiecesOf511Bytes) {
    const std::string piece(511, 'x');
    EXPECT_EQ(Lookup()("#a\r\n" + piece + "y\r\n#b\r\n", "a"), piece + "y");
    // A piece counts as a line of its own: one that begins with "#" ends the body.
    EXPECT_EQ(Lookup()("#a\r\n" + piece + "#y\r\n", "a"), piece);
    EXPECT_EQ(Lookup()("#a\r\n" + piece.substr(1) + "#y\r\n", "a"), piece.substr(1) + "#y");
    // ... and one that equals the header begins it.
    EXPECT_EQ(Lookup()(piece + "#a\r\nbody\r\n", "a"), "body");
}

} // namespace
