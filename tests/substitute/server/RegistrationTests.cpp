// The server's registry entries, made and removed by the built program.
#include "substitute/server/Registration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/kit/ProcessRun.h"
#include "tests/substitute/ServerProgram.h"

namespace {

constexpr wchar_t kClasses[] = L"Software\\Classes";
constexpr wchar_t kApplication[] = L"{2A67A06D-D94F-42C1-9074-33F05630EF24}";
constexpr wchar_t kLibrary[] = L"{92F852BA-8681-4312-8DBC-427E0BA3E3CE}";
constexpr wchar_t kAutomationMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";

const std::wstring kClassIds[] = {
    L"{F56F2E65-2620-41A2-84B8-5CE2F149E1D0}",
    L"{165A1555-26FC-47F1-9E9E-9F1C7AD5E27A}",
    L"{966E0F51-1745-406C-8F30-9A5758854678}",
};

const wchar_t* const kProgramIds[] = {L"Kemba.DriverAutomation", L"Kemba.DriverActions",
                                      L"Kemba.VersionInformation"};

const std::wstring kInterfaceIds[] = {
    L"{68F02881-B954-4562-9393-2ECBE3A5964E}", L"{AA5EEEEE-B490-4E7D-8A61-6815FFE141AB}",
    L"{7BBEBD77-8ACD-487C-8A9D-74CBD0B9515D}", L"{44B3B4AD-1AA5-4DD9-B547-47FBD9DEE9B9}",
    L"{8DF5480A-139A-4610-9D3F-CD84F0A1AFC5}", L"{5BFC3DC7-8F55-4F43-BFD1-361C1335AD9B}",
};

std::wstring Lowered(std::wstring text) {
    CharLowerW(text.data());
    return text;
}

void ExpectClassEntries(HKEY root) {
    const std::wstring classes = std::wstring(kClasses) + L"\\";
    for (const std::wstring& id : kClassIds) {
        SCOPED_TRACE(id);
        const std::wstring key = classes + L"CLSID\\" + id;
        EXPECT_EQ(ReadRegistryText(root, key, L"AppID"), kApplication);
        EXPECT_EQ(ReadRegistryText(root, key + L"\\TypeLib"), kLibrary);
        EXPECT_EQ(ReadRegistryText(root, key + L"\\Version"), L"1.0");
        EXPECT_EQ(ReadRegistryText(root, key + L"\\LocalServer32"),
                  L"\"" + kit::ProgramPath(L"kemba-dal.exe") + L"\"");
        EXPECT_EQ(ReadRegistryText(root, key + L"\\LocalServer32", L"ServerExecutable"),
                  kit::ProgramPath(L"kemba-dal.exe"));
    }
    for (std::size_t index = 0; index < std::size(kClassIds); ++index) {
        const std::wstring name = kProgramIds[index];
        EXPECT_EQ(ReadRegistryText(root, classes + L"CLSID\\" + kClassIds[index] + L"\\ProgID"), name);
        EXPECT_EQ(ReadRegistryText(root, classes + name + L"\\CLSID"), kClassIds[index]);
    }
    EXPECT_TRUE(ReadRegistryText(root, classes + L"AppID\\" + kApplication));
    EXPECT_EQ(ReadRegistryText(root, classes + L"AppID\\kemba-dal.exe", L"AppID"), kApplication);
}

void ExpectLibraryEntries(HKEY root) {
    const std::wstring classes = std::wstring(kClasses) + L"\\";
    const auto library = ReadRegistryText(root, classes + L"TypeLib\\" + kLibrary + L"\\1.0\\0\\win64");
    ASSERT_TRUE(library);
    EXPECT_EQ(Lowered(*library), Lowered(kit::ProgramPath(L"kemba-dal.exe")));
    for (const std::wstring& id : kInterfaceIds) {
        SCOPED_TRACE(id);
        const std::wstring key = classes + L"Interface\\" + id;
        EXPECT_EQ(ReadRegistryText(root, key + L"\\ProxyStubClsid32"), kAutomationMarshaller);
        EXPECT_EQ(ReadRegistryText(root, key + L"\\TypeLib"), kLibrary);
    }
}

/// The lines of one snapshot that the other lacks.
std::vector<std::wstring> Added(std::vector<std::wstring> before, std::vector<std::wstring> after) {
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    std::vector<std::wstring> added;
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(added));
    return added;
}

/// All class entries of the machine and of the user.
struct Snapshot {
    std::vector<std::wstring> machine = SnapshotRegistry(HKEY_LOCAL_MACHINE, kClasses);
    std::vector<std::wstring> user = SnapshotRegistry(HKEY_CURRENT_USER, kClasses);
};

void ExpectSame(const Snapshot& before, const Snapshot& after) {
    const std::vector<std::wstring> nothing;
    EXPECT_EQ(Added(before.machine, after.machine), nothing);
    EXPECT_EQ(Added(after.machine, before.machine), nothing);
    EXPECT_EQ(Added(before.user, after.user), nothing);
    EXPECT_EQ(Added(after.user, before.user), nothing);
}

/// The server program's exit status.
DWORD RunServer(const std::vector<std::wstring>& words) {
    return kit::RunProgram(L"kemba-dal.exe", words).status;
}

class RegistrationTest : public testing::Test {
  protected:
    RegistrationTest() {
        // Windows always has a key for the user's classes, a new Wine prefix has none.
        HKEY classes = nullptr;
        RegCreateKeyW(HKEY_CURRENT_USER, kClasses, &classes);
        RegCloseKey(classes);
        RemoveAll();
    }
    ~RegistrationTest() override { RemoveAll(); }

  private:
    static void RemoveAll() {
        RunServer({L"/unregserver"});
        RunServer({L"/unregserver", L"/user"});
    }
};

TEST_F(RegistrationTest, ForTheMachineWritesAllEntriesAndLeavesNothingBehind) {
    const Snapshot before;
    ASSERT_EQ(RunServer({L"/regserver"}), 0U);
    ExpectClassEntries(HKEY_LOCAL_MACHINE);
    ExpectLibraryEntries(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(Added(before.user, Snapshot().user), std::vector<std::wstring>());
    ASSERT_EQ(RunServer({L"/unregserver"}), 0U);
    ExpectSame(before, Snapshot());
}

// Where the library's entries go is not looked at: Wine writes those of a user for the machine.
TEST_F(RegistrationTest, ForTheUserWritesTheClassesAndLeavesNothingBehind) {
    const Snapshot before;
    ASSERT_EQ(RunServer({L"/regserver", L"/user"}), 0U);
    ExpectClassEntries(HKEY_CURRENT_USER);
    EXPECT_FALSE(ReadRegistryText(HKEY_LOCAL_MACHINE, std::wstring(kClasses) + L"\\CLSID\\" + kClassIds[0]));
    ASSERT_EQ(RunServer({L"/unregserver", L"/user"}), 0U);
    ExpectSame(before, Snapshot());
}

TEST_F(RegistrationTest, MayBeRepeated) {
    EXPECT_EQ(RunServer({L"/regserver"}), 0U);
    EXPECT_EQ(RunServer({L"-RegServer"}), 0U);
    ExpectClassEntries(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(RunServer({L"/unregserver"}), 0U);
    EXPECT_EQ(RunServer({L"-UnregServer"}), 0U);
}

} // namespace
