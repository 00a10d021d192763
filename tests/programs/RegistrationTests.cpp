// The server's registry entries, made and removed by the built program.
#include <aclapi.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo/Wine.h"
#include "substitute/registration/RegistryKeys.h"
#include "tests/kit/Narrow.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/programs/ServerProgram.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

const std::wstring kClasses = L"Software\\Classes\\";
constexpr wchar_t kApplication[] = L"{2A67A06D-D94F-42C1-9074-33F05630EF24}";
constexpr wchar_t kLibrary[] = L"{92F852BA-8681-4312-8DBC-427E0BA3E3CE}";
constexpr wchar_t kAutomationMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kForeignProxy[] = L"{6F1D0A4B-52C3-4E7B-9E0B-2F1B7A9C3D10}";
constexpr wchar_t kForeignProgram[] = L"C:\\Drivers\\automation.dll";

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

const HKEY kRoots[] = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};
const REGSAM kViews[] = {KEY_WOW64_64KEY, KEY_WOW64_32KEY};

/// Keys that no program but a server of the contract has, below the classes.
std::vector<std::wstring> OwnKeys() {
    std::vector<std::wstring> keys = {std::wstring(L"AppID\\") + kApplication, L"AppID\\kemba-dal.exe",
                                      std::wstring(L"TypeLib\\") + kLibrary,
                                      std::wstring(L"CLSID\\") + kForeignProxy};
    for (const std::wstring& id : kClassIds) {
        keys.push_back(L"CLSID\\" + id);
    }
    for (const wchar_t* const name : kProgramIds) {
        keys.emplace_back(name);
    }
    for (const std::wstring& id : kInterfaceIds) {
        keys.push_back(L"Interface\\" + id);
    }
    return keys;
}

/// What a registration may touch, keys and values one line each; of the folders of classes how much is in
/// them.
std::vector<std::wstring> Snapshot(HKEY root) {
    std::vector<std::wstring> lines;
    for (const REGSAM view : kViews) {
        for (const std::wstring& key : OwnKeys()) {
            const auto below = SnapshotRegistry(root, kClasses + key, view);
            lines.insert(lines.end(), below.begin(), below.end());
        }
        for (const wchar_t* const folder : {L"", L"CLSID", L"AppID", L"TypeLib", L"Interface"}) {
            DWORD keys = 0;
            DWORD values = 0;
            if (const UniqueKey key = OpenKey(root, kClasses + folder, KEY_READ | view)) {
                RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                 nullptr, nullptr, nullptr, nullptr);
                lines.push_back(folder + std::wstring(L": ") + std::to_wstring(keys) + L"/" +
                                std::to_wstring(values));
            }
        }
    }
    if (OpenKey(root, L"Software\\Brandle", KEY_READ)) {
        lines.emplace_back(L"Brandle");
    }
    const auto record = SnapshotRegistry(root, L"Software\\Brandle\\kemba-dal");
    lines.insert(lines.end(), record.begin(), record.end());
    return lines;
}

/// All classes; none on Windows, where others write there at any moment.
std::vector<std::wstring> AllClasses(HKEY root) {
    return demo::IsWine() ? SnapshotRegistry(root, L"Software\\Classes") : std::vector<std::wstring>();
}

/// Of the machine and of the user.
std::vector<std::wstring> Snapshot() {
    std::vector<std::wstring> lines = Snapshot(HKEY_LOCAL_MACHINE);
    const std::vector<std::wstring> user = Snapshot(HKEY_CURRENT_USER);
    lines.insert(lines.end(), user.begin(), user.end());
    return lines;
}

/// Sets a value below the classes, making its key.
void Put(HKEY root, REGSAM view, const std::wstring& key, const std::wstring& name,
         const RegistryData& data) {
    SetRegistryData(root, kClasses + key, name, data, view);
}

void PutText(HKEY root, REGSAM view, const std::wstring& key, const std::wstring& text,
             const std::wstring& name = {}) {
    Put(root, view, key, name, RegistryData::OfText(text));
}

/// What a driver package's own server in process has in the registry.
void PutDriverPackage(REGSAM view) {
    const HKEY root = HKEY_LOCAL_MACHINE;
    for (const std::wstring& id : kClassIds) {
        const std::wstring key = L"CLSID\\" + id;
        PutText(root, view, key, L"Driver automation");
        RegistryData expanded = RegistryData::OfText(L"%SystemRoot%\\automation.dll");
        expanded.type = REG_EXPAND_SZ;
        Put(root, view, key + L"\\InprocServer32", L"", expanded);
        PutText(root, view, key + L"\\InprocServer32", L"Both", L"ThreadingModel");
        PutText(root, view, key + L"\\Version", L"1.0");
        Put(root, view, key + L"\\Settings\\Deep", L"Bits", RegistryData::OfBytes(REG_BINARY, {1, 0, 2}));
        Put(root, view, key + L"\\Settings", L"Nothing", RegistryData::OfBytes(REG_NONE, {}));
    }
    const std::wstring library = std::wstring(L"TypeLib\\") + kLibrary;
    PutText(root, view, library + L"\\1.0\\0\\win64", kForeignProgram);
    PutText(root, view, library + L"\\2.0\\0\\win64", kForeignProgram);
    PutText(root, view, std::wstring(L"CLSID\\") + kForeignProxy + L"\\InprocServer32",
            L"C:\\Drivers\\proxy.dll");
    for (const std::wstring& id : kInterfaceIds) {
        PutText(root, view, L"Interface\\" + id + L"\\ProxyStubClsid32", kForeignProxy);
        PutText(root, view, L"Interface\\" + id + L"\\NumMethods", L"16");
    }
}

void ExpectClassEntries(HKEY root, REGSAM view, const std::wstring& program) {
    const auto read = [&](const std::wstring& key, const std::wstring& value = {}) {
        return ReadRegistryText(root, kClasses + key, value, view);
    };
    for (std::size_t index = 0; index < std::size(kClassIds); ++index) {
        const std::wstring key = L"CLSID\\" + kClassIds[index];
        SCOPED_TRACE(key);
        EXPECT_EQ(read(key, L"AppID"), kApplication);
        EXPECT_EQ(read(key + L"\\TypeLib"), kLibrary);
        EXPECT_EQ(read(key + L"\\Version"), L"1.0");
        EXPECT_EQ(read(key + L"\\LocalServer32"), L"\"" + program + L"\"");
        EXPECT_EQ(read(key + L"\\LocalServer32", L"ServerExecutable"), program);
        EXPECT_EQ(read(key + L"\\InprocServer32"), std::nullopt);
        EXPECT_EQ(read(key + L"\\ProgID"), kProgramIds[index]);
        EXPECT_EQ(read(kProgramIds[index] + std::wstring(L"\\CLSID")), kClassIds[index]);
    }
    EXPECT_TRUE(read(std::wstring(L"AppID\\") + kApplication));
    EXPECT_EQ(read(L"AppID\\kemba-dal.exe", L"AppID"), kApplication);
}

void ExpectLibraryEntries(HKEY root, REGSAM view, const std::wstring& program) {
    const auto read = [&](const std::wstring& key, const std::wstring& value = {}) {
        return ReadRegistryText(root, kClasses + key, value, view);
    };
    const std::wstring library = std::wstring(L"TypeLib\\") + kLibrary + L"\\1.0";
    EXPECT_EQ(read(library), L"Driver automation");
    EXPECT_EQ(read(library + L"\\0\\win64"), program);
    EXPECT_EQ(read(library + L"\\0\\win32"), program);
    for (const std::wstring& id : kInterfaceIds) {
        SCOPED_TRACE(id);
        EXPECT_EQ(read(L"Interface\\" + id + L"\\ProxyStubClsid32"), kAutomationMarshaller);
        EXPECT_EQ(read(L"Interface\\" + id + L"\\TypeLib"), kLibrary);
        EXPECT_EQ(read(L"Interface\\" + id + L"\\TypeLib", L"Version"), L"1.0");
    }
}

/// All entries, as programs of either word size see them.
void ExpectRegistered(HKEY root, const std::wstring& program = ProgramPath(L"kemba-dal.exe")) {
    for (const REGSAM view : kViews) {
        SCOPED_TRACE(view == KEY_WOW64_32KEY ? "32 bits" : "64 bits");
        ExpectClassEntries(root, view, program);
        ExpectLibraryEntries(root, view, program);
    }
}

ProcessResult RunServer(const std::vector<std::wstring>& words,
                        const std::wstring& program = L"kemba-dal.exe") {
    return RunProgram(program, words);
}

bool Contains(const std::string& text, std::string_view part) {
    return text.find(part) != text.npos;
}

/// A copy of the program in a folder of its own.
class ServerCopy {
  public:
    ServerCopy() { std::filesystem::copy_file(ProgramPath(L"kemba-dal.exe"), Path()); }
    std::wstring Path() const { return m_folder.File(L"kemba-dal.exe"); }
    std::wstring Folder() const { return m_folder.File(L""); }
    void Delete() const { std::filesystem::remove(Path()); }

  private:
    TemporaryFolder m_folder;
};

/// Nothing of any server of the contract is registered, before and after.
class Registration : public testing::Test {
  protected:
    Registration() { RemoveAll(); }
    ~Registration() override { RemoveAll(); }

  private:
    static void RemoveAll() {
        for (const HKEY root : kRoots) {
            for (const REGSAM view : kViews) {
                for (const std::wstring& key : OwnKeys()) {
                    Remove(root, view, kClasses + key);
                }
            }
            Remove(root, KEY_WOW64_64KEY, L"Software\\Brandle\\kemba-dal");
            RemoveKeyIfEmpty({root, View::Bits64, L"Software\\Brandle"});
            for (const wchar_t* const folder : {L"CLSID", L"AppID", L"TypeLib", L"Interface"}) {
                RemoveKeyIfEmpty({root, View::Bits64, kClasses + folder});
                RemoveKeyIfEmpty({root, View::Bits32, kClasses + folder});
            }
        }
        // Windows always has a key for the user's classes, a new Wine prefix has none.
        MakeKey(HKEY_CURRENT_USER, L"Software\\Classes", KEY_READ);
    }

    static void Remove(HKEY root, REGSAM view, const std::wstring& key) {
        if (UniqueKey opened = OpenKey(root, key, KEY_ALL_ACCESS | view)) {
            RegDeleteTreeW(opened.get(), nullptr);
            opened.reset();
            RegDeleteKeyExW(root, key.c_str(), view, 0);
        }
    }
};

TEST_F(Registration, ForTheMachineWritesAllEntriesAndLeavesNothingBehind) {
    const auto before = AllClasses(HKEY_LOCAL_MACHINE);
    const auto own = Snapshot();
    const auto user = Snapshot(HKEY_CURRENT_USER);
    ASSERT_EQ(RunServer({L"/regserver"}).status, 0U);
    ExpectRegistered(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(Snapshot(HKEY_CURRENT_USER), user);
    ASSERT_EQ(RunServer({L"/unregserver"}).status, 0U);
    EXPECT_EQ(Snapshot(), own);
    EXPECT_EQ(AllClasses(HKEY_LOCAL_MACHINE), before);
}

TEST_F(Registration, ForTheUserWritesAllEntriesAndLeavesNothingBehind) {
    const auto before = AllClasses(HKEY_CURRENT_USER);
    const auto own = Snapshot();
    const auto machine = Snapshot(HKEY_LOCAL_MACHINE);
    ASSERT_EQ(RunServer({L"/regserver", L"/user"}).status, 0U);
    ExpectRegistered(HKEY_CURRENT_USER);
    EXPECT_EQ(Snapshot(HKEY_LOCAL_MACHINE), machine);
    ASSERT_EQ(RunServer({L"/unregserver", L"/user"}).status, 0U);
    EXPECT_EQ(Snapshot(), own);
    EXPECT_EQ(AllClasses(HKEY_CURRENT_USER), before);
}

TEST_F(Registration, MayBeRepeated) {
    const auto before = Snapshot();
    EXPECT_EQ(RunServer({L"/regserver"}).status, 0U);
    const auto registered = Snapshot();
    EXPECT_EQ(RunServer({L"-RegServer", L"-Replace"}).status, 0U);
    EXPECT_EQ(Snapshot(), registered);
    EXPECT_EQ(RunServer({L"/unregserver"}).status, 0U);
    EXPECT_EQ(RunServer({L"-UnregServer"}).status, 0U);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, SaysWhatItDid) {
    const std::string program = "\"" + Narrow(ProgramPath(L"kemba-dal.exe")) + "\"";
    const struct {
        std::vector<std::wstring> words;
        std::string output;
    } rows[] = {
        {{L"/regserver"}, "kemba-dal: registered " + program + " for all users\r\n"},
        {{L"/unregserver"}, "kemba-dal: removed the registration of " + program + " for all users\r\n"},
        {{L"/unregserver"}, "kemba-dal: nothing is registered for all users that could be removed\r\n"},
        {{L"/regserver", L"/user"},
         "kemba-dal: registered " + program +
             " for this user\r\n"
             "kemba-dal: programs that run as administrator, and services, do not see it\r\n"},
        {{L"/unregserver"},
         "kemba-dal: nothing is registered for all users that could be removed; the registration for this "
         "user is "
         "removed by /unregserver /user\r\n"},
        {{L"/unregserver", L"/user"},
         "kemba-dal: removed the registration of " + program + " for this user\r\n"},
        {{L"/regserver"}, "kemba-dal: registered " + program + " for all users\r\n"},
        {{L"/unregserver", L"/user"},
         "kemba-dal: nothing is registered for this user that could be removed; the registration for all "
         "users is removed by /unregserver\r\n"},
        {{L"/unregserver"}, "kemba-dal: removed the registration of " + program + " for all users\r\n"},
    };
    for (const auto& row : rows) {
        ProcessOptions options;
        options.outputToFile = &row == rows; // once to a file, then to a pipe
        const ProcessResult run = RunProgram(L"kemba-dal.exe", row.words, options);
        EXPECT_EQ(run.status, 0u);
        EXPECT_EQ(run.output, row.output);
        EXPECT_EQ(run.errors, "");
    }
}

TEST_F(Registration, RefusesToTakeAnotherProgramsPlaceAndLeavesItAlone) {
    const std::wstring classKey = L"CLSID\\" + kClassIds[1];
    const std::wstring library = std::wstring(L"TypeLib\\") + kLibrary;
    const struct {
        REGSAM view;
        std::wstring key;
        std::wstring text;
        std::string named;
    } rows[] = {
        {KEY_WOW64_64KEY, classKey + L"\\InprocServer32", kForeignProgram,
         "\"C:\\Drivers\\automation.dll\" (DriverActions)"},
        {KEY_WOW64_32KEY, classKey + L"\\InprocServer32", kForeignProgram,
         "\"C:\\Drivers\\automation.dll\" (DriverActions)"},
        {KEY_WOW64_64KEY, classKey + L"\\LocalServer32", L"\"C:\\Drivers\\a b.exe\" /x",
         "\"C:\\Drivers\\a b.exe\" (DriverActions)"},
        {KEY_WOW64_64KEY, classKey + L"\\TreatAs", kForeignProxy,
         "\"class {6F1D0A4B-52C3-4E7B-9E0B-2F1B7A9C3D10}\" (DriverActions)"},
        {KEY_WOW64_64KEY, library + L"\\1.0\\0\\win32", kForeignProgram,
         "\"C:\\Drivers\\automation.dll\" (the type library)"},
        {KEY_WOW64_64KEY, L"Interface\\" + kInterfaceIds[2] + L"\\ProxyStubClsid32", kForeignProxy,
         "\"class {6F1D0A4B-52C3-4E7B-9E0B-2F1B7A9C3D10}\" (IDriverActions)"},
        {KEY_WOW64_64KEY, L"Interface\\" + kInterfaceIds[2] + L"\\TypeLib", kForeignProxy,
         "\"type library {6F1D0A4B-52C3-4E7B-9E0B-2F1B7A9C3D10}\" (IDriverActions)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        PutText(HKEY_LOCAL_MACHINE, row.view, row.key, row.text);
        const auto before = Snapshot();
        const ProcessResult refused = RunServer({L"/regserver"});
        EXPECT_EQ(refused.status, 1u);
        EXPECT_TRUE(Contains(refused.errors, row.named)) << refused.errors;
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(Snapshot(), before);
        RegDeleteValueW(OpenKey(HKEY_LOCAL_MACHINE, kClasses + row.key, KEY_WRITE | row.view).get(), L"");
    }
}

TEST_F(Registration, RemovesNothingThatItDidNotWrite) {
    PutDriverPackage(KEY_WOW64_64KEY);
    PutDriverPackage(KEY_WOW64_32KEY);
    const auto before = Snapshot();
    const ProcessResult run = RunServer({L"/unregserver"});
    EXPECT_EQ(run.status, 0u);
    EXPECT_EQ(run.output, "kemba-dal: nothing is registered for all users that could be removed\r\n");
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, PutsBackWhatItReplacedOnRequest) {
    PutDriverPackage(KEY_WOW64_64KEY);
    PutDriverPackage(KEY_WOW64_32KEY);
    const auto before = Snapshot();
    const ProcessResult replaced = RunServer({L"/regserver", L"/replace"});
    EXPECT_EQ(replaced.status, 0u);
    EXPECT_TRUE(Contains(replaced.output, "\\automation.dll\" (DriverAutomation)")) << replaced.output;
    ExpectRegistered(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(ReadRegistryText(HKEY_LOCAL_MACHINE, kClasses + L"TypeLib\\" + kLibrary + L"\\2.0\\0\\win64"),
              kForeignProgram);
    EXPECT_EQ(RunServer({L"/regserver", L"/replace"}).status, 0u);
    EXPECT_EQ(RunServer({L"/regserver"}).status, 0u);
    ExpectRegistered(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(RunServer({L"/unregserver"}).status, 0u);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, KeepsWhatWasInItsKeysBefore) {
    for (const HKEY root : kRoots) {
        Put(root, KEY_WOW64_64KEY, std::wstring(L"AppID\\") + kApplication, L"LaunchPermission",
            RegistryData::OfBytes(REG_BINARY, {1, 2, 3}));
        RegistryData name = RegistryData::OfText(L"%OS%");
        name.type = REG_EXPAND_SZ;
        Put(root, KEY_WOW64_64KEY, kProgramIds[0], L"", name);
        for (const std::wstring& key : {L"Interface\\" + kInterfaceIds[0], L"CLSID\\" + kClassIds[0]}) {
            MakeKey(root, kClasses + key, KEY_READ);
        }
    }
    const auto before = Snapshot();
    for (const std::vector<std::wstring>& scope : {std::vector<std::wstring>(), {L"/user"}}) {
        std::vector<std::wstring> words = {L"/regserver"};
        words.insert(words.end(), scope.begin(), scope.end());
        EXPECT_EQ(RunServer(words).status, 0u);
        words[0] = L"/unregserver";
        EXPECT_EQ(RunServer(words).status, 0u);
        EXPECT_EQ(Snapshot(), before);
    }
}

TEST_F(Registration, KeepsWhatAnotherProgramHasWrittenSince) {
    ASSERT_EQ(RunServer({L"/regserver"}).status, 0u);
    const std::wstring server = L"CLSID\\" + kClassIds[0] + L"\\InprocServer32";
    const std::wstring library = std::wstring(L"TypeLib\\") + kLibrary + L"\\1.0\\0\\win64";
    const std::wstring proxy = L"Interface\\" + kInterfaceIds[0] + L"\\ProxyStubClsid32";
    PutText(HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, server, kForeignProgram);
    PutText(HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, library, kForeignProgram);
    // The entries that it has in common with this server are its own now.
    const ProcessResult run = RunServer({L"/unregserver"});
    EXPECT_EQ(run.status, 0u);
    EXPECT_TRUE(Contains(run.output, "registered is now \"C:\\Drivers\\automation.dll\"")) << run.output;
    const auto read = [](const std::wstring& key) {
        return ReadRegistryText(HKEY_LOCAL_MACHINE, kClasses + key);
    };
    EXPECT_EQ(read(server), kForeignProgram);
    EXPECT_EQ(read(library), kForeignProgram);
    EXPECT_EQ(read(proxy), kAutomationMarshaller);
    EXPECT_EQ(read(L"CLSID\\" + kClassIds[0] + L"\\LocalServer32"), std::nullopt);
    EXPECT_EQ(read(std::wstring(kProgramIds[0]) + L"\\CLSID"), std::nullopt);
    for (const std::wstring& line : Snapshot()) {
        EXPECT_EQ(line.find(L"kemba-dal"), line.npos) << line;
    }
}

TEST_F(Registration, AnotherCopyIsTakenOverButNotUnregistered) {
    const auto before = Snapshot();
    const ServerCopy copy;
    ASSERT_EQ(RunServer({L"/regserver"}, copy.Path()).status, 0u);
    const auto copyRegistered = Snapshot();
    const ProcessResult refused = RunServer({L"/unregserver"});
    EXPECT_EQ(refused.status, 1u);
    EXPECT_TRUE(Contains(refused.errors, Narrow(copy.Path()))) << refused.errors;
    EXPECT_EQ(Snapshot(), copyRegistered);

    const ProcessResult taken = RunServer({L"/regserver"});
    EXPECT_EQ(taken.status, 0u);
    EXPECT_TRUE(Contains(taken.output, " in place of \"" + Narrow(copy.Path()) + "\"")) << taken.output;
    ExpectRegistered(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(RunServer({L"/unregserver"}, copy.Path()).status, 1u);
    EXPECT_EQ(RunServer({L"/unregserver"}).status, 0u);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, ACopyThatIsGoneIsUnregisteredByAnyOther) {
    const auto before = Snapshot();
    const ServerCopy copy;
    ASSERT_EQ(RunServer({L"/regserver"}, copy.Path()).status, 0u);
    copy.Delete();
    EXPECT_EQ(RunServer({L"/unregserver"}).status, 0u);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, EntriesWithoutARecordAreRemovedByTheProgramThatTheyName) {
    ASSERT_EQ(RunServer({L"/regserver"}).status, 0u);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Brandle\\kemba-dal");
    const ServerCopy copy;
    EXPECT_EQ(RunServer({L"/unregserver"}, copy.Path()).status, 1u);
    EXPECT_EQ(RunServer({L"/unregserver"}).status, 0u);
    for (const std::wstring& line : Snapshot()) { // but for folders of classes
        EXPECT_EQ(line.find(L"Software\\"), line.npos) << line;
    }
}

TEST_F(Registration, AFailureHalfWayLeavesWhatWasThere) {
    PutDriverPackage(KEY_WOW64_64KEY);
    // No lasting key can be made below one that goes with the session: the interfaces cannot be registered.
    for (const std::wstring& id : kInterfaceIds) {
        const std::wstring key = kClasses + L"Interface\\" + id;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
        ASSERT_TRUE(MakeKey(HKEY_LOCAL_MACHINE, key, KEY_WRITE, REG_OPTION_VOLATILE));
    }
    const auto before = Snapshot();
    const ProcessResult failed = RunServer({L"/regserver", L"/replace"});
    EXPECT_EQ(failed.status, 1u);
    EXPECT_TRUE(Contains(failed.errors, "Software\\Classes\\Interface\\{")) << failed.errors;
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, AUsersOwnRegistrationIsWeighedAgainstTheMachines) {
    PutDriverPackage(KEY_WOW64_64KEY);
    const auto before = Snapshot();
    EXPECT_EQ(RunServer({L"/regserver", L"/user"}).status, 1u);
    EXPECT_EQ(Snapshot(), before);
    const auto machine = Snapshot(HKEY_LOCAL_MACHINE);
    const ProcessResult replaced = RunServer({L"/regserver", L"/user", L"/replace"});
    EXPECT_EQ(replaced.status, 0u);
    EXPECT_TRUE(Contains(replaced.errors, "kemba-dal: warning: for this user it goes before the machine's "))
        << replaced.errors;
    EXPECT_EQ(Snapshot(HKEY_LOCAL_MACHINE), machine);
    ExpectRegistered(HKEY_CURRENT_USER);
    EXPECT_EQ(RunServer({L"/unregserver", L"/user"}).status, 0u);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Registration, WarnsThatAUsersOwnRegistrationGoesBeforeTheMachines) {
    const ServerCopy copy;
    ASSERT_EQ(RunServer({L"/regserver", L"/user"}, copy.Path()).status, 0u);
    const ProcessResult run = RunServer({L"/regserver"});
    EXPECT_EQ(run.status, 0u);
    EXPECT_TRUE(Contains(run.errors, "kemba-dal: warning: for this user")) << run.errors;
    EXPECT_TRUE(Contains(run.errors, Narrow(copy.Path()))) << run.errors;
}

TEST_F(Registration, WarnsOfAProgramThatUsersMayChange) {
    const ServerCopy copy;
    BYTE world[SECURITY_MAX_SID_SIZE] = {};
    DWORD size = sizeof(world);
    ASSERT_TRUE(CreateWellKnownSid(WinWorldSid, nullptr, world, &size));
    const struct {
        std::wstring path;
        DWORD rights;
        bool warns;
    } rows[] = {
        {copy.Path(), FILE_GENERIC_READ | FILE_GENERIC_EXECUTE, false},
        {copy.Path(), FILE_ALL_ACCESS, true},
        {copy.Path(), FILE_GENERIC_READ | FILE_GENERIC_EXECUTE, false},
        {copy.Folder(), FILE_ALL_ACCESS, true},
    };
    for (const auto& row : rows) {
        EXPLICIT_ACCESS_W access = {};
        access.grfAccessPermissions = row.rights;
        access.grfAccessMode = SET_ACCESS;
        access.Trustee.TrusteeForm = TRUSTEE_IS_SID;
        access.Trustee.ptstrName = reinterpret_cast<wchar_t*>(world);
        ACL* made = nullptr;
        ASSERT_EQ(SetEntriesInAclW(1, &access, nullptr, &made), ERROR_SUCCESS + 0u);
        const UniqueLocal<ACL> list(made);
        std::wstring path = row.path;
        ASSERT_EQ(SetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                        nullptr, made, nullptr),
                  ERROR_SUCCESS + 0u);
        const ProcessResult run = RunServer({L"/regserver"}, copy.Path());
        EXPECT_EQ(run.status, 0u);
        EXPECT_EQ(Contains(run.errors, "kemba-dal: warning: any user of this computer may change"), row.warns)
            << run.errors;
    }
}

TEST_F(Registration, FailuresReachAConsoleInAllLetters) {
    PutText(HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, L"CLSID\\" + kClassIds[0] + L"\\InprocServer32",
            L"C:\\\x0416\x03A9.dll");
    FreeConsole();
    ASSERT_TRUE(AllocConsole());
    const std::wstring path = ProgramPath(L"kemba-dal.exe");
    std::wstring line = L"\"" + path + L"\" /regserver";
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES; // and there are none, as for a program of the windows subsystem
    PROCESS_INFORMATION started = {};
    ASSERT_TRUE(CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &started));
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    ASSERT_EQ(WaitForSingleObject(process.get(), 30'000), WAIT_OBJECT_0);
    const UniqueHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                          nullptr));
    std::wstring cells(1'000, L'\0');
    DWORD read = 0;
    ASSERT_TRUE(
        ReadConsoleOutputCharacterW(screen.get(), cells.data(), static_cast<DWORD>(cells.size()), {}, &read));
    EXPECT_NE(cells.find(L"C:\\\x0416\x03A9.dll"), cells.npos) << cells;
}

} // namespace
