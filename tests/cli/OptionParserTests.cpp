// The global options: what is taken out of the words, what is recorded, what is left for the command.
#include <gtest/gtest.h>

#include <string>

#include "cli/ApplicationSettings.h"
#include "cli/OptionParser.h"
#include "core/OArray.h"
#include "core/OString.h"
#include "tests/kit/Printed.h"

using namespace kemba;
using namespace kit;

namespace {

Words AsWords(const OStringArray& array) {
    Words words;
    for (const OString& word : array) {
        words.emplace_back(word.Wide());
    }
    return words;
}

/// A parsed command line.
struct Parsed {
    explicit Parsed(const Words& words) {
        OStringArray array;
        for (const std::wstring& word : words) {
            OCore::RequireMemory(array.Append(word.c_str()));
        }
        succeeded = kemba::ParseOptions(settings, array);
        left = AsWords(array);
        printers = AsWords(settings.printerNames);
    }

    bool succeeded = false;
    ApplicationSettings settings;
    Words left;
    Words printers;
};

TEST(OptionParser, ALineWithoutOptionsIsLeftAsItIs) {
    const Parsed line({L"get", L"status", L""});
    EXPECT_TRUE(line.succeeded);
    EXPECT_EQ(line.left, (Words{L"get", L"status", L""}));
    EXPECT_FALSE(line.settings.allPrinters);
    EXPECT_FALSE(line.settings.quiet);
    EXPECT_EQ(line.printers, Words{});
}

TEST(OptionParser, OptionsAfterTheCommandWordCount) {
    const Parsed line({L"get", L"status", L"/p", L"Printer 1"});
    EXPECT_EQ(line.left, (Words{L"get", L"status"}));
    EXPECT_EQ(line.printers, Words{L"Printer 1"});
}

TEST(OptionParser, EverySpellingOfAnOptionIsTheOption) {
    for (const wchar_t* const word : {L"/a", L"/A", L"-a", L"-A", L"/all", L"-Anything"}) {
        SCOPED_TRACE(OString(word).Narrow());
        const Parsed line({word, L"get"});
        EXPECT_TRUE(line.settings.allPrinters);
        EXPECT_FALSE(line.settings.quiet);
        EXPECT_EQ(line.left, Words{L"get"});
    }
    for (const wchar_t* const word : {L"/q", L"/Q", L"-q", L"-Quiet", L"/q?"}) {
        SCOPED_TRACE(OString(word).Narrow());
        const Parsed line({word, L"get"});
        EXPECT_TRUE(line.settings.quiet);
        EXPECT_FALSE(line.settings.allPrinters);
        EXPECT_EQ(line.left, Words{L"get"});
    }
    for (const wchar_t* const word : {L"/p", L"/P", L"-p", L"-Printer", L"/printer"}) {
        SCOPED_TRACE(OString(word).Narrow());
        const Parsed line({word, L"A", L"get"});
        EXPECT_EQ(line.printers, Words{L"A"});
        EXPECT_EQ(line.left, Words{L"get"});
    }
    for (const wchar_t* const word : {L"/?", L"-?", L"/?x"}) {
        SCOPED_TRACE(OString(word).Narrow());
        EXPECT_EQ(Parsed({L"get", word, L"status"}).left, Words{L"help"});
    }
}

TEST(OptionParser, WordsWithoutAnOptionLetterStayForTheCommand) {
    const Words words{L"action", L"-n", L"/", L"-", L"", L"/x", L"p", L"\\p", L"//p", L"?"};
    EXPECT_EQ(Parsed(words).left, words);
}

TEST(OptionParser, PrinterNamesAreKeptInOrderWithDuplicates) {
    EXPECT_EQ(Parsed({L"/p", L"B", L"get", L"/p", L"A", L"/p", L"B"}).printers, (Words{L"B", L"A", L"B"}));
}

TEST(OptionParser, APrinterNameMayLookLikeAnything) {
    const Parsed line({L"/p", L"/a", L"/p", L"/p", L"/p", L"", L"get"});
    EXPECT_EQ(line.printers, (Words{L"/a", L"/p", L""}));
    EXPECT_FALSE(line.settings.allPrinters);
    EXPECT_EQ(line.left, Words{L"get"});
}

TEST(OptionParser, APrinterOptionWithoutANameFails) {
    EXPECT_FALSE(Parsed({L"/p"}).succeeded);
    const Parsed line({L"/q", L"/p", L"A", L"get", L"/p"});
    EXPECT_FALSE(line.succeeded);
    EXPECT_TRUE(line.settings.quiet);
    EXPECT_EQ(line.printers, Words{L"A"});
}

TEST(OptionParser, TheQuestionMarkReplacesTheLineAndKeepsWhatWasRecorded) {
    const Parsed line({L"/p", L"A", L"/q", L"/?", L"get", L"/a", L"/p"});
    EXPECT_TRUE(line.succeeded);
    EXPECT_EQ(line.left, Words{L"help"});
    EXPECT_EQ(line.printers, Words{L"A"});
    EXPECT_TRUE(line.settings.quiet);
    EXPECT_FALSE(line.settings.allPrinters) << "words after the question mark are not examined";
}

TEST(OptionParser, OnlyOptionsLeaveNothing) {
    const Parsed line({L"/q", L"/a"});
    EXPECT_TRUE(line.succeeded);
    EXPECT_EQ(line.left, Words{});
}

TEST(OptionParser, AnEmptyLineStaysEmpty) {
    const Parsed line({});
    EXPECT_TRUE(line.succeeded);
    EXPECT_EQ(line.left, Words{});
}

TEST(OptionParser, AThousandWordsKeepTheirOrder) {
    Words words;
    Words expected;
    for (int index = 0; index < 500; ++index) {
        words.emplace_back(index % 2 == 0 ? L"/a" : L"-Quiet");
        words.push_back(L"word" + std::to_wstring(index));
        expected.push_back(words.back());
    }
    EXPECT_EQ(Parsed(words).left, expected);
}

} // namespace
