// Action profiles: their text, their folder, which one counts.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

#include "substitute/actions/ActionProfile.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/Texts.h"

using namespace kemba::substitute;
using namespace kit;
using namespace std::string_literals;

namespace {

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
        {"Feed = \"a\"FF", L"1: a blank is missing after \"a\""},
        {"Feed = \"a\"\"b\"", L"1: a blank is missing after \"a\""},
        {"Feed = FF 0x1B\"a\"", L"1: a blank is missing after 0x1B"},
        {"Feed = ESC\"a\"", L"1: a blank is missing after ESC"},
        {"Feed = FF=", L"1: a blank is missing after FF"},
        {"Feed = \"a\"=", L"1: a blank is missing after \"a\""},
        {"Feed\0x = FF"s, L"1: no action of a profile is called \"Feed?x\""},
        {"Feed\0 = FF"s, L"1: no action of a profile is called \"Feed?\""},
        {"\0 = FF"s, L"1: no action of a profile is called \"?\""},
        {"Feed = FF\0"s, L"1: \"FF?\" " + neither},
        {"Feed = \"a\0b\""s, L"1: a text in quotes holds printable ASCII characters only"},
        {"F\0e\0"s, L"1: no action of a profile is called \"F?e?\""},
    };
    for (const auto& [text, refusal] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(RefusalOf(text), refusal);
    }
}

TEST(ActionProfile, WhateverTheBytesAreTheyAreTakenOrRefusedInOurWords) {
    const std::string text = "\xEF\xBB\xBF# x\r\nFeed = ESC 0x1B \"a\" # y\n\t\"b\"\nCut=FF";
    int refused = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            SCOPED_TRACE(testing::Message() << "byte " << byte << " at " << place);
            std::string damaged = text;
            damaged[place] = static_cast<char>(byte);
            const std::wstring refusal = RefusalOf(damaged); // any other exception ends the test
            EXPECT_TRUE(SpeaksForItself(refusal));
            refused += refusal != L"taken";
        }
        RefusalOf(text.substr(0, place));
    }
    EXPECT_GT(refused, 0);
}

class ActionProfiles : public testing::Test {
  protected:
    TemporaryFolder folder;
    kemba::substitute::ActionProfiles profiles{[this] { return folder.Path(); }};
};

TEST_F(ActionProfiles, ThePrintersGoesBeforeItsDrivers) {
    EXPECT_FALSE(profiles.Find(L"Dock", L"Zippy 300"));
    folder.Put(L"Zippy 300.profile", "Feed = \"driver\"\nCut = \"driver\"");
    EXPECT_EQ(profiles.Find(L"Dock", L"Zippy 300")->at(4), "driver");
    folder.Put(L"Dock.profile", "Feed = \"printer\"");
    const ActionProfile expected = {{4, "printer"}}; // the driver's actions do not show through
    EXPECT_EQ(profiles.Find(L"Dock", L"Zippy 300"), expected);
    EXPECT_FALSE(profiles.Find(L"Other", L"Other"));
}

TEST_F(ActionProfiles, CharactersThatNoFileNameMayHaveAreUnderlines) {
    folder.Put(L"__srv_a_b_c_d_e_f_g.profile", "Feed = \"x\"");
    EXPECT_TRUE(profiles.Find(L"\\\\srv\\a:b/c\"d<e>f|g", L""));
    EXPECT_TRUE(profiles.Find(L"", L"?*srv\ta:b/c\"d<e>f|g"));
    EXPECT_FALSE(profiles.Find(L"..\\x", L"NUL"));
}

TEST_F(ActionProfiles, ADamagedFileIsRefusedByName) {
    folder.Put(L"Dock.profile", "Feed = FF\nCut = ?");
    folder.Put(L"Zippy.profile", "Feed = FF");
    const Failure failure = FailureOf([&] { profiles.Find(L"Dock", L"Zippy"); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_TRUE(BeginsWith(failure.reason,
                           L"action profile \"" + folder.Path() + L"\\Dock.profile\", line 2: \"?\" is"));
    EXPECT_TRUE(profiles.Find(L"Other", L"Zippy")); // and concerns nobody else
}

TEST_F(ActionProfiles, TheLargestFileIsTakenAndALargerOneIsRefused) {
    std::string text = "Feed = FF #";
    text.resize(kemba::substitute::ActionProfiles::kLargestFile, '.');
    folder.Put(L"Dock.profile", text);
    EXPECT_TRUE(profiles.Find(L"Dock", L""));
    folder.Put(L"Dock.profile", text + ".");
    const Failure failure = FailureOf([&] { profiles.Find(L"Dock", L""); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    EXPECT_TRUE(BeginsWith(failure.reason,
                           L"reading the action profile \"" + folder.Path() + L"\\Dock.profile\" failed"));
}

TEST_F(ActionProfiles, AProfileThatCannotBeReadIsNotTakenForNone) {
    std::filesystem::create_directory(folder.Path() + L"\\Dock.profile");
    EXPECT_THROW(profiles.Find(L"Dock", L""), Failure);
}

/// A registry key of the test's own for the value that names the folder.
class ActionProfileFolder : public testing::Test {
  protected:
    void Put(DWORD type, const void* data, std::size_t size) const {
        const auto* const bytes = static_cast<const BYTE*>(data);
        key.Set(L"ActionProfiles", RegistryData::OfBytes(type, {bytes, bytes + size}));
    }
    /// The text as it stands, with no zero behind it.
    void Put(const std::wstring& text) const { Put(REG_SZ, text.data(), text.size() * sizeof(wchar_t)); }
    std::wstring Folder() const {
        return kemba::substitute::ActionProfileFolder(HKEY_CURRENT_USER, key.Path().c_str());
    }
    Failure Refusal() const {
        return FailureOf([&] { Folder(); });
    }

    const ScratchKey key{HKEY_CURRENT_USER,
                         L"Software\\kemba profile test " + std::to_wstring(GetCurrentProcessId())};
};

TEST_F(ActionProfileFolder, IsBesideTheProgramWithoutTheKeyOrTheValue) {
    const std::wstring program = ProgramPath();
    const std::wstring beside = program.substr(0, program.rfind(L'\\')) + L"\\profiles";
    EXPECT_EQ(Folder(), beside);
    key.Set(L"Other", RegistryData::OfText(L""));
    EXPECT_EQ(Folder(), beside);
}

TEST_F(ActionProfileFolder, IsWhatTheRegistrySays) {
    const std::wstring longest = L"C:\\" + std::wstring(32'000, L'x');
    for (const std::wstring& folder : {L"C:\\some folder"s, L"\\\\server\\share"s, longest}) {
        Put(folder + L"\0"s);
        EXPECT_EQ(Folder(), folder);
        Put(folder); // the zero at the end may be missing
        EXPECT_EQ(Folder(), folder);
        Put(folder + L"\0\0"s); // or be there twice
        EXPECT_EQ(Folder(), folder);
    }
    const wchar_t variable[] = L"%SystemDrive%\\some folder";
    Put(REG_EXPAND_SZ, variable, sizeof(variable));
    EXPECT_EQ(Folder(), L"C:\\some folder");
}

TEST_F(ActionProfileFolder, IsRefusedInOurWordsWhenTheValueIsNoAbsolutePath) {
    const std::wstring words = L"the registry value \"ActionProfiles\" is no absolute path: ";
    for (const std::wstring& text :
         {L""s, L"\0"s, L"\0\0"s, L"some folder\0"s, L"C:folder\0"s, L"C"s, L"C:\\some\0folder\0"s,
          L"C:\\some\0"s + std::wstring(3, L'\0') + L"x", L"\0C:\\some\0"s}) {
        SCOPED_TRACE(testing::PrintToString(text));
        Put(text);
        const Failure failure = Refusal();
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
        EXPECT_TRUE(BeginsWith(failure.reason, words));
    }
}

TEST_F(ActionProfileFolder, IsRefusedWhenTheValueNamesADevice) {
    for (const std::wstring& text : {L"\\\\.\\C:\\some folder"s, L"//./C:/some folder"s, L"C:\\NUL"s,
                                     L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\some folder"s}) {
        SCOPED_TRACE(testing::PrintToString(text));
        Put(text);
        const Failure failure = Refusal();
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_BAD_PATHNAME));
        EXPECT_TRUE(BeginsWith(failure.reason, L"the registry value \"ActionProfiles\" names a device: "));
    }
}

TEST_F(ActionProfileFolder, IsRefusedInOurWordsWhenTheValueIsNoText) {
    const wchar_t text[] = L"C:\\some folder";
    for (const DWORD type : {REG_NONE, REG_DWORD, REG_BINARY, REG_MULTI_SZ, REG_QWORD}) {
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{4}, sizeof(text)}) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", size " << size);
            Put(type, text, size);
            const Failure failure = Refusal();
            EXPECT_NE(failure.status, S_OK);
            EXPECT_TRUE(
                BeginsWith(failure.reason, L"reading the registry value \"ActionProfiles\" failed: "));
        }
    }
    for (const DWORD type : {REG_SZ, REG_EXPAND_SZ}) {
        for (std::size_t size = 0; size <= sizeof(text); ++size) { // half a character at the end, too
            SCOPED_TRACE(testing::Message() << "type " << type << ", size " << size);
            Put(type, text, size);
            const Failure failure = Refusal(); // any other exception ends the test
            EXPECT_TRUE(SpeaksForItself(failure.reason));
            EXPECT_TRUE(size > 4 || failure.status != S_OK); // "C:" is no absolute path
        }
    }
    Put(L"C:\\" + std::wstring(40'000, L'x')); // longer than any path
    EXPECT_EQ(Refusal().status, HRESULT_FROM_WIN32(ERROR_MORE_DATA));
}

TEST(ActionProfile, TheSampleThatShipsIsUnderstood) {
    const std::wstring program = ProgramPath(L"kemba-dal.exe");
    const std::wstring folder = program.substr(0, program.rfind(L'\\')) + L"\\profiles";
    const auto sample =
        kemba::substitute::ActionProfiles([&] { return folder; }).Find(L"escpos-receipt", L"");
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->at(3), "\x1DVB\0"s);
    EXPECT_EQ(sample->at(4), "\x1B"
                             "d\x04");
    EXPECT_EQ(sample->at(7), "\x1B@");
    EXPECT_EQ(sample->at(10), "\x1D(A\x02\0\0\x02"s);
    EXPECT_EQ(sample->count(8), 0u);
}

} // namespace
