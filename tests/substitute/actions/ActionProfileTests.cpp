// Action profiles: their text, their folder, which one counts.
#include "substitute/actions/ActionProfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "substitute/base/Paths.h"
#include "tests/kit/ProcessRun.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/TemporaryFolder.h"
#include "tests/substitute/Texts.h"

namespace {

using namespace kemba::substitute;
using namespace std::string_literals;

/// What the text is refused with, without the words that all refusals begin with.
std::wstring RefusalOf(const std::string& text) {
    const Failure failure = FailureOf([&] { ParseActionProfile(text, L"p"); });
    if (failure.status == S_OK) {
        return L"taken";
    }
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    const std::wstring begin = L"action profile \"p\", line ";
    EXPECT_TRUE(BeginsWith(failure.reason, begin));
    return failure.reason.substr(begin.size());
}

TEST(ActionProfile, EveryWayToWriteBytesIsUnderstood) {
    EXPECT_EQ(ParseActionProfile("Feed = 0x1b 0xFF \"a # = b\" ESC FF", L"p").at(4), "\x1B\xFF"
                                                                                     "a # = b\x1B\x0C");
    const char* const names[] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                 "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                 "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};
    for (int code = 0; code < 32; ++code) {
        SCOPED_TRACE(names[code]);
        EXPECT_EQ(ParseActionProfile("Cut=" + std::string(names[code]), L"p").at(3),
                  std::string(1, static_cast<char>(code)));
    }
}

TEST(ActionProfile, EveryActionOfBytesHasItsCode) {
    const std::pair<const char*, LONG> rows[] = {
        {"Test", 1},  {"Blank", 2},           {"Cut", 3},       {"Feed", 4},
        {"Reset", 7}, {"FactoryDefaults", 8}, {"Calibrate", 9}, {"PrintConfiguration", 10},
    };
    for (const auto& [word, code] : rows) {
        SCOPED_TRACE(word);
        const ActionProfile expected = {{code, "x"}};
        EXPECT_EQ(ParseActionProfile(word + " = \"x\""s, L"p"), expected);
    }
    EXPECT_EQ(ParseActionProfile("fEEd = \"x\"", L"p").count(4), 1u);
}

TEST(ActionProfile, LinesGoOnAndCommentsAndBlankLinesDoNotCount) {
    const ActionProfile expected = {{1, "abc"}, {4, "\x0C"}};
    EXPECT_EQ(ParseActionProfile("\xEF\xBB\xBF# first \xC3\xA4\r\n\r\nTest = \"a\"# one\r\n\t\"b\"\r\n  # "
                                 "no\n\n \"c\"\nFeed\t=\n FF",
                                 L"p"),
              expected);
    EXPECT_TRUE(ParseActionProfile("", L"p").empty());
    EXPECT_TRUE(ParseActionProfile("# nothing\n", L"p").empty());
}

TEST(ActionProfile, WhatItDoesNotUnderstandIsRefusedWithItsLine) {
    const std::wstring neither =
        L"is neither a byte such as 0x1B, nor a text in quotes, nor a control character's name";
    const std::pair<std::string, std::wstring> rows[] = {
        {"\nFead = FF", L"2: no action of a profile is called \"Fead\""},
        {"FlushCache = FF", L"1: no action of a profile is called \"FlushCache\""},
        {"ConfigurePrinter = FF", L"1: no action of a profile is called \"ConfigurePrinter\""},
        {"= FF", L"1: no action of a profile is called \"=\""},
        {"\xC3\xA4 = FF", L"1: no action of a profile is called \"??\""},
        {"Feed", L"1: \"=\" is missing after \"Feed\""},
        {"Feed FF", L"1: \"=\" is missing after \"Feed\""},
        {"Feed = FF\nCut = FF\nFEED = LF", L"3: the action \"FEED\" is there twice"},
        {"Feed =\n\nCut = FF", L"1: the action has no bytes"},
        {"Cut = FF\nFeed = # FF\n", L"2: the action has no bytes"},
        {" FF", L"1: an indented line goes on with an action, and there is none before it"},
        {"Feed = 1B", L"1: \"1B\" " + neither},
        {"Feed = 0x1", L"1: \"0x1\" " + neither},
        {"Feed = 0x1BC", L"1: \"0x1BC\" " + neither},
        {"Feed = 0xG0", L"1: \"0xG0\" " + neither},
        {"Feed = 0x0G", L"1: \"0x0G\" " + neither},
        {"Feed = ff", L"1: \"ff\" " + neither},
        {"Feed = FF = FF", L"1: \"=\" " + neither},
        {"Feed = \"abc", L"1: the closing quote is missing"},
        {"Feed = \"a\tb\"", L"1: a text in quotes holds printable ASCII characters only"},
        {"Feed = \"\xC3\xA4\"", L"1: a text in quotes holds printable ASCII characters only"},
        {"Feed = \"a\"FF", L"1: a blank is missing after the closing quote"},
        {"F\0e\0"s, L"1: no action of a profile is called \"F?e?\""},
    };
    for (const auto& [text, refusal] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(RefusalOf(text), refusal);
    }
}

class ActionProfilesTest : public testing::Test {
  protected:
    TemporaryFolder folder;
    ActionProfiles profiles{[this] { return folder.Path(); }};
};

TEST_F(ActionProfilesTest, ThePrintersGoesBeforeItsDrivers) {
    EXPECT_FALSE(profiles.Find(L"Dock", L"Zippy 300"));
    folder.Put(L"Zippy 300.profile", "Feed = \"driver\"\nCut = \"driver\"");
    EXPECT_EQ(profiles.Find(L"Dock", L"Zippy 300")->at(4), "driver");
    folder.Put(L"Dock.profile", "Feed = \"printer\"");
    const ActionProfile expected = {{4, "printer"}}; // the driver's actions do not show through
    EXPECT_EQ(profiles.Find(L"Dock", L"Zippy 300"), expected);
    EXPECT_FALSE(profiles.Find(L"Other", L"Other"));
}

TEST_F(ActionProfilesTest, CharactersThatNoFileNameMayHaveAreUnderlines) {
    folder.Put(L"__srv_a_b_c_d_e_f_g.profile", "Feed = \"x\"");
    EXPECT_TRUE(profiles.Find(L"\\\\srv\\a:b/c\"d<e>f|g", L""));
    EXPECT_TRUE(profiles.Find(L"", L"?*srv\ta:b/c\"d<e>f|g"));
    EXPECT_FALSE(profiles.Find(L"..\\x", L"NUL"));
}

TEST_F(ActionProfilesTest, ADamagedFileIsRefusedByName) {
    folder.Put(L"Dock.profile", "Feed = FF\nCut = ?");
    folder.Put(L"Zippy.profile", "Feed = FF");
    const Failure failure = FailureOf([&] { profiles.Find(L"Dock", L"Zippy"); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_TRUE(BeginsWith(failure.reason,
                           L"action profile \"" + folder.Path() + L"\\Dock.profile\", line 2: \"?\" is"));
    EXPECT_TRUE(profiles.Find(L"Other", L"Zippy")); // and concerns nobody else
}

TEST_F(ActionProfilesTest, TheLargestFileIsTakenAndALargerOneIsRefused) {
    std::string text = "Feed = FF #";
    text.resize(ActionProfiles::kLargestFile, '.');
    folder.Put(L"Dock.profile", text);
    EXPECT_TRUE(profiles.Find(L"Dock", L""));
    folder.Put(L"Dock.profile", text + ".");
    const Failure failure = FailureOf([&] { profiles.Find(L"Dock", L""); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    EXPECT_TRUE(BeginsWith(failure.reason,
                           L"reading the action profile \"" + folder.Path() + L"\\Dock.profile\" failed"));
}

TEST_F(ActionProfilesTest, AProfileThatCannotBeReadIsNotTakenForNone) {
    std::filesystem::create_directory(folder.Path() + L"\\Dock.profile");
    EXPECT_THROW(profiles.Find(L"Dock", L""), Failure);
}

TEST(ActionProfileFolder, IsTheRegistrysOrElseBesideTheProgram) {
    const std::wstring key = L"Software\\kemba profile test " + std::to_wstring(GetCurrentProcessId());
    const auto put = [&](const std::wstring& text) {
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"ActionProfiles", REG_SZ, text.c_str(),
                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    };
    const std::wstring program = ProgramPath();
    const std::wstring beside = program.substr(0, program.rfind(L'\\')) + L"\\profiles";
    EXPECT_EQ(ActionProfileFolder(HKEY_CURRENT_USER, key.c_str()), beside);
    put(L"C:\\some folder");
    EXPECT_EQ(ActionProfileFolder(HKEY_CURRENT_USER, key.c_str()), L"C:\\some folder");
    const std::pair<const wchar_t*, const wchar_t*> refusals[] = {
        {L"", L"is no absolute path"},
        {L"some folder", L"is no absolute path"},
        {L"C:folder", L"is no absolute path"},
        {L"\\\\.\\C:\\some folder", L"names a device"},
        {L"//./C:/some folder", L"names a device"},
        {L"C:\\NUL", L"names a device"},
        {L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\some folder", L"names a device"},
    };
    for (const auto& [folder, reason] : refusals) {
        SCOPED_TRACE(folder);
        put(folder);
        const Failure failure = FailureOf([&] { ActionProfileFolder(HKEY_CURRENT_USER, key.c_str()); });
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
        EXPECT_TRUE(
            BeginsWith(failure.reason, std::wstring(L"the registry value \"ActionProfiles\" ") + reason));
    }
    const DWORD number = 1;
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"ActionProfiles", REG_DWORD, &number, sizeof(number));
    EXPECT_THROW(ActionProfileFolder(HKEY_CURRENT_USER, key.c_str()), Failure);
    RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
}

TEST(ActionProfile, TheSampleThatShipsIsUnderstood) {
    const std::wstring program = kit::ProgramPath(L"kemba-dal.exe");
    const std::wstring folder = program.substr(0, program.rfind(L'\\')) + L"\\profiles";
    const auto sample = ActionProfiles([&] { return folder; }).Find(L"escpos-receipt", L"");
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->at(3), "\x1DVB\0"s);
    EXPECT_EQ(sample->at(4), "\x1B"
                             "d\x04");
    EXPECT_EQ(sample->at(7), "\x1B@");
    EXPECT_EQ(sample->at(10), "\x1D(A\x02\0\0\x02"s);
    EXPECT_EQ(sample->count(8), 0u);
}

} // namespace
