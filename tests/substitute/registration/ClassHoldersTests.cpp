// What command lines and paths say of a program.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "substitute/registration/ClassHolders.h"
#include "tests/kit/TemporaryFile.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

TEST(ClassHolders, ACommandLineNamesItsProgram) {
    const struct {
        const wchar_t* commandLine;
        const wchar_t* program;
    } rows[] = {
        {L"\"C:\\Program Files\\a b.exe\" /x \"y\"", L"C:\\Program Files\\a b.exe"},
        {L"\"C:\\unclosed.exe", L"C:\\unclosed.exe"},
        {L"C:\\Program Files\\a b.exe -automation", L"C:\\Program Files\\a b.exe"},
        {L"  C:\\A.EXE /x", L"C:\\A.EXE"},
        {L"C:\\a.exe.folder\\b.exe", L"C:\\a.exe.folder\\b.exe"},
        {L"C:\\Program Files\\a.dll", L"C:\\Program Files\\a.dll"},
        {L"server.exe", L"server.exe"},
        {L"\"", L""},
        {L"", L""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ProgramOf(row.commandLine), row.program);
    }
}

TEST(ClassHolders, ACopyOfTheServerIsKnownByItsFileName) {
    EXPECT_TRUE(IsServerCopy(L"C:\\Tools\\kemba-dal.exe"));
    EXPECT_TRUE(IsServerCopy(L"\\\\server\\share/KEMBA-DAL.EXE"));
    EXPECT_TRUE(IsServerCopy(L"kemba-dal.exe"));
    EXPECT_FALSE(IsServerCopy(L"C:\\kemba-dal.exe\\server.exe"));
    EXPECT_FALSE(IsServerCopy(L"C:\\Tools\\not-kemba-dal.exe"));
    EXPECT_FALSE(IsServerCopy(L"C:\\Tools\\kemba-dal.exe.dll"));
    EXPECT_FALSE(IsServerCopy(L""));
}

TEST(ClassHolders, AFileIsTheSameHoweverItsPathIsWritten) {
    const TemporaryFile file;
    const TemporaryFile other;
    std::wstring capitals = file.Path();
    CharUpperW(capitals.data());
    std::wstring detour = file.Path();
    detour.insert(detour.find_last_of(L'\\'), L"\\.");
    EXPECT_TRUE(IsSameFile(file.Path(), capitals));
    EXPECT_TRUE(IsSameFile(file.Path(), detour));
    EXPECT_FALSE(IsSameFile(file.Path(), other.Path()));
    EXPECT_TRUE(IsSameFile(L"C:\\gone\\a.exe", L"c:\\GONE\\A.EXE"));
    EXPECT_FALSE(IsSameFile(L"C:\\gone\\a.exe", L"C:\\gone\\b.exe"));
}

TEST(ClassHolders, OtherProgramsAreListedWithWhatTheyHold) {
    const std::vector<Holder> holders = {{L"DriverAutomation", L"C:\\a.dll"},
                                         {L"DriverActions", L"D:\\kemba-dal.exe"},
                                         {L"the type library", L"C:\\b.exe"}};
    EXPECT_EQ(Listed(OtherPrograms(holders)),
              L"\"C:\\a.dll\" (DriverAutomation), \"C:\\b.exe\" (the type library)");
    EXPECT_EQ(Listed({}), L"");
}

} // namespace
