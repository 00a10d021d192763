// kemba.exe alone: words, bytes and exit status as they cross the process boundary.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <ios>
#include <iterator>
#include <string>

#include "messages/TextResource.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

const std::string kHelp = std::string(TextResource().GetText("help:help").Narrow()) + "\r\n";

TEST(KembaProgram, ShowsItsHelpAndNothingElse) {
    const ProcessResult run = Kemba({});
    EXPECT_EQ(run.output, kHelp);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 1U);
}

TEST(KembaProgram, WritesTheSameBytesToAPipeAndToAFile) {
    ProcessOptions toFile;
    toFile.outputToFile = true;
    EXPECT_EQ(Kemba({L"help"}, toFile).output, kHelp);
    EXPECT_EQ(Kemba({L"help"}).output, kHelp);
}

TEST(KembaProgram, ExitStatusesAreTheThreeOnes) {
    EXPECT_EQ(Kemba({L"help"}).status, 0U);
    EXPECT_EQ(Kemba({L"/p"}).status, 1U);
    EXPECT_EQ(Kemba({L"bogus"}).status, 2U);
}

TEST(KembaProgram, QuietModeWritesNothing) {
    const ProcessResult run = Kemba({L"/q", L"bogus"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 2U);
}

TEST(KembaProgram, WordsArriveAsTyped) {
    // In a folder where the patterns would match the catalogue and the manifest, were they expanded.
    const Words words{L"*",   L"cmake/*.cmake", L"dev?",          L"de?",
                      L"a b", L"quote\"quote",  L"back\\slash\\", L"\\\"",
                      L"",    L"50%PATH%",      L"\x00E4"};
    for (const std::wstring& word : words) {
        const ProcessResult run = Kemba({L"help", word});
        EXPECT_EQ(run.output,
                  "No help exists for '" + std::string(OString(word.c_str()).Narrow()) + "' command.\r\n");
        EXPECT_EQ(run.status, 0U);
    }
}

TEST(KembaProgram, TakesAWordOf32000Characters) {
    EXPECT_EQ(Kemba({std::wstring(32'000, L'x')}).output,
              "The command '" + std::string(32'000, 'x') + "' is unknown.\r\n");
}

TEST(KembaProgram, TakesAThousandWords) {
    Words words{L"help", L"usage"};
    words.resize(1000, L"w");
    const ProcessResult run = Kemba(words);
    EXPECT_EQ(run.output, std::string(TextResource().GetText("help:usage").Narrow()) + "\r\n");
    EXPECT_EQ(run.status, 0U);
}

TEST(KembaProgram, TakesALoneSurrogate) {
    const ProcessResult run = Kemba({L"\xD83D"});
    EXPECT_EQ(run.output, "The command '" + std::string(OString(L"\xD83D").Narrow()) + "' is unknown.\r\n");
    EXPECT_EQ(run.status, 2U);
}

/// A resource of kemba.exe, as text; empty when there is none.
std::string ResourceOfKemba(const wchar_t* type, const wchar_t* name) {
    const UniqueLibrary program(
        LoadLibraryExW(ProgramPath(L"kemba.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    const HRSRC found = FindResourceW(program.get(), name, type);
    return found ? std::string(static_cast<const char*>(LockResource(LoadResource(program.get(), found))),
                               SizeofResource(program.get(), found))
                 : std::string();
}

TEST(KembaProgram, ItsManifestNamesAllFiveSystemsAndNoCodePage) {
    const std::string manifest = ResourceOfKemba(MAKEINTRESOURCEW(24), MAKEINTRESOURCEW(1));
    for (const char* const part : {
             "{e2011457-1546-43c5-a5fe-008deee3d3f0}", // Windows Vista
             "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", // Windows 7
             "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}", // Windows 8
             "{1f676c76-80e1-4239-95bb-83d0f6d0da78}", // Windows 8.1
             "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}", // Windows 10
             "level=\"asInvoker\"",
             ">true</longPathAware>",
         }) {
        EXPECT_NE(manifest.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(manifest.find("activeCodePage"), std::string::npos);
}

TEST(KembaProgram, CarriesItsVersionAndItsCatalogue) {
    const std::string version = ResourceOfKemba(MAKEINTRESOURCEW(16), MAKEINTRESOURCEW(1));
    const std::wstring product = L"ProductName\0";
    EXPECT_NE(version.find(std::string(reinterpret_cast<const char*>(product.c_str()), 22)),
              std::string::npos);
    std::ifstream catalogue("messages/KEMBA[ENU].TXT", std::ios::binary);
    EXPECT_TRUE(catalogue);
    EXPECT_EQ(ResourceOfKemba(L"BINARY", L"KEMBA[ENU].TXT"),
              std::string(std::istreambuf_iterator<char>(catalogue), {}));
}

} // namespace
