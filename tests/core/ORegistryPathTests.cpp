// ORegistry's path pipeline: escapes, splitting, aliases, roots.
#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "core/ORegistry.h"
#include "core/OString.h"
#include "tests/core/VirtualSlots.h"

using namespace kit;

namespace {

struct Alias {
    const char* name;
    const char* expansion;
};
constexpr Alias kAliases[] = {
    {"CLASSES_ROOT", "0:"},
    {"CURRENT_USER", "1:"},
    {"USER", "1:SOFTWARE/Brandle/Drivers"},
    {"USERSETTINGS", "1:SOFTWARE/Brandle/Drivers/Printers/[PRINTER]/Settings"},
    {"USERSTOCK", "1:SOFTWARE/Brandle/Drivers/Paper Sizes/[PRINTER]"},
    {"USERPAPERSIZES", "1:SOFTWARE/Brandle/Drivers/Printers/[PRINTER]/PrinterDriverData/Paper Sizes"},
    {"LOCAL_MACHINE", "2:"},
    {"CONTROL", "2:SYSTEM/CurrentControlSet/Control"},
    {"PRINT", "2:SYSTEM/CurrentControlSet/Control/Print"},
    {"MONITOR", "2:SYSTEM/CurrentControlSet/Control/Print/Monitors/Brandle Network Monitor"},
    {"PNPDATA", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PnPData"},
    {"DATA", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData"},
    {"CACHE", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Cache"},
    {"DEBUG", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Development"},
    {"FONTS",
     "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Downloaded Fonts"},
    {"MODEL", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Model"},
    {"PAPERSIZES",
     "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Paper Sizes"},
    {"PRESETS", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Presets"},
    {"SECURITY", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Security"},
    {"SETTINGS", "2:SYSTEM/CurrentControlSet/Control/Print/Printers/[PRINTER]/PrinterDriverData/Settings"},
    {"ENUM", "2:SYSTEM/CurrentControlSet/Enum"},
    {"LOCAL", "2:SOFTWARE/Brandle/Drivers"},
    {"CRASHDUMP", "2:SOFTWARE/Brandle/Drivers/Debug/CrashDump"},
    {"STOCK", "2:SOFTWARE/Brandle/Drivers/Paper Sizes"},
    {"GLOBAL", "2:SOFTWARE/Brandle/Drivers/GlobalSettings"},
    {"NETWORK", "2:SOFTWARE/Brandle/Drivers/Network/@[SERVER]"},
    {"PARAMETERSET", "2:SOFTWARE/Brandle/Drivers/Parameter Sets"},
    {"USERS", "3:"},
};

/// What `ExpandAlias` makes of a path.
OString Expanded(OString path) {
    ORegistry().ExpandAlias(path);
    return path;
}

/// What `DecodePercent` makes of a text.
OString Decoded(OString text) {
    ORegistry::DecodePercent(text);
    return text;
}

TEST(ORegistryPath, OperationsAreInOrder) {
    EXPECT_EQ(SlotOf(&ORegistry::ExpandAlias), 2);
    EXPECT_EQ(SlotOf(&ORegistry::OpenKey), 3);
    EXPECT_EQ(sizeof(ORegistry), 3 * sizeof(void*)); // table, base path, access rights
}

TEST(ORegistryPath, EveryAliasExpands) {
    for (const Alias& alias : kAliases) {
        SCOPED_TRACE(alias.name);
        const OString expansion = alias.expansion;
        const OString between = expansion.LastCharacter() == L':' ? "" : "/";
        EXPECT_EQ(Expanded(OString(alias.name) + ":Key/Value"), expansion + between + "Key/Value");
        EXPECT_EQ(Expanded(OString(alias.name) + ":"), expansion + between);
    }
}

TEST(ORegistryPath, AliasesAreFoundInAnyCaseAndForm) {
    EXPECT_EQ(Expanded("local:X"), OString("2:SOFTWARE/Brandle/Drivers/X"));
    EXPECT_EQ(Expanded(L"Local:X"), OString("2:SOFTWARE/Brandle/Drivers/X"));
    EXPECT_EQ(Expanded("local_machine:X"), OString("2:X"));
}

TEST(ORegistryPath, OtherPathsDoNotExpand) {
    for (const char* const path :
         {"", "no colon", ":Key", "0:Key", "2:LOCAL:Key", "FOO:Key", " LOCAL:Key", "LOCAL", "LOCALS:Key"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Expanded(path), OString(path));
    }
}

TEST(ORegistryPath, ExpandsUpToTheFirstColonAndOnce) {
    EXPECT_EQ(Expanded("LOCAL:LOCAL:X"), OString("2:SOFTWARE/Brandle/Drivers/LOCAL:X"));
    EXPECT_EQ(Expanded("LOCAL_MACHINE:LOCAL:X"), OString("2:LOCAL:X"));
}

TEST(ORegistryPath, PlaceholdersStayInTheExpansion) {
    EXPECT_EQ(Expanded("NETWORK:X"), OString("2:SOFTWARE/Brandle/Drivers/Network/@[SERVER]/X"));
}

TEST(ORegistryPath, TheAliasTableIsReadyForEveryThreadAtOnce) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, -1);
    for (int& count : wrong) {
        threads.emplace_back([&count] {
            count = 0;
            for (int round = 0; round < 20; ++round) {
                for (const Alias& alias : kAliases) {
                    OString path = OString(alias.name) + ":";
                    const ORegistry registry;
                    registry.ExpandAlias(path);
                    const OString expansion = alias.expansion;
                    count +=
                        path == (expansion.LastCharacter() == L':' ? expansion : expansion + "/") ? 0 : 1;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST(ORegistryPath, SplitsIntoKeyAndValue) {
    const struct {
        const char* base;
        const char* value;
        const char* keyAfter;
        const char* nameAfter;
    } rows[] = {
        // a full path by itself
        {"", "CURRENT_USER:Software/X/Y", "1:Software/X", "Y"},
        {"", "local:DebugLogMasks\\Name", "2:SOFTWARE/Brandle/Drivers/DebugLogMasks", "Name"},
        {"", "LOCAL:DebugLogMasks/Name", "2:SOFTWARE/Brandle/Drivers/DebugLogMasks", "Name"},
        {"", "2:SOFTWARE/A//B/Z", "2:SOFTWARE/A%2FB", "Z"},
        {"", "2:Key/Value%3Aname", "2:Key", "Value:name"},
        {"", "2:Key/Value::name", "2:Key", "Value:name"},
        {"", "2:Key/100%%", "2:Key", "100%"},
        {"", "2:Key/5%%x", "2:Key", "5%x"},
        {"", "2:Key/5%%41x", "2:Key", "5Ax"}, // what was decoded is looked at again
        {"", "2:Value", "2:", "Value"},
        {"", "2:Key/", "2:Key", ""},
        {"", "FOO:Key/Value", "FOO:Key", "Value"},
        {"1:Other", "2:Key/Value", "2:Key", "Value"},
        // joined to a base path
        {"1:Base", "Value", "1:Base", "Value"},
        {"1:Base/", "Value", "1:Base", "Value"},
        {"1:Base///", "Value", "1:Base%2F", "Value"},
        {"1:Base\\/", "Value", "1:Base", "Value"},
        {"1:Base\\", "Sub\\Value", "1:Base/Sub", "Value"},
        {"1:", "Value", "1:", "Value"},
        {"LOCAL:", "Sub/Value", "2:SOFTWARE/Brandle/Drivers/Sub", "Value"},
        {"1:A//B", "Value", "1:A%2FB", "Value"},
        {"1:Base", ":Value", "1:Base/:", "Value"}, // a colon in the first place does not make a full path
        {"", "Key/Value", "Key", "Value"},
        // the default value of a key
        {"1:Base/Key/", "", "1:Base/Key", ""},
        {"LOCAL:Key", "", "2:SOFTWARE/Brandle/Drivers/Key", ""},
        {"1:", "", "1:", ""},
    };
    for (const auto& row : rows) {
        for (const bool wide : {false, true}) {
            SCOPED_TRACE(testing::Message() << row.base << " + " << row.value << (wide ? " in UTF-16" : ""));
            OString key = row.base;
            OString name = row.value;
            if (wide) {
                key = key.Wide();
                name = name.Wide();
            }
            EXPECT_TRUE(ORegistry().SplitValuePath(key, name));
            EXPECT_STREQ(key.Narrow(), row.keyAfter);
            EXPECT_STREQ(name.Narrow(), row.nameAfter);
        }
    }
}

TEST(ORegistryPath, WithoutASeparatorDoesNotSplit) {
    for (const auto& [base, value] : {std::pair{"", "Value"}, {"", ""}, {"Key", ""}, {"///", ""}}) {
        SCOPED_TRACE(testing::Message() << base << " + " << value);
        OString key = base;
        OString name = value;
        EXPECT_FALSE(ORegistry().SplitValuePath(key, name));
    }
}

TEST(ORegistryPath, DecodesPercentEscapes) {
    const struct {
        const char* text;
        const char* decoded;
    } rows[] = {
        {"a%2Fb", "a/b"},
        {"a%2fb", "a/b"},
        {"a%3A%25b", "a:%b"},
        {"a%41b%42c", "aAbBc"},
        {"", ""},
        {"plain", "plain"},
        {"%41bc", "%41bc"},     // in the first place: never decoded
        {"%41b%42", "%41b%42"}, // and it ends decoding
        {"a%", "a%"},           // too few characters follow
        {"a%4", "a%4"},
        {"a%41", "aA"},
        {"a%4%41", "aN41"}, // any character is taken for a digit: % is 5 + 9
        {"a%2541b", "aAb"}, // what was decoded is looked at again
        {"a%25", "a%"},
        {"a%2525253Ab", "a:b"},
        {"a%00b", "ab"}, // a zero character is none
        {"a%GGb", "a\x10"
                  "b"}, // G is 7 + 9, and the low byte of 16 * 16 + 16 counts
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Decoded(row.text), OString(row.decoded));
        EXPECT_EQ(Decoded(OString(row.text).Wide()), OString(row.decoded));
    }
    EXPECT_STREQ(Decoded("a%E4").Wide(), L"a\xE4");
}

TEST(ORegistryPath, ResolvesRootNumbersAndSubkeys) {
    const struct {
        const char* path;
        HKEY root;
        const wchar_t* subkey;
    } rows[] = {
        {"0:Key", HKEY_CLASSES_ROOT, L"Key"},
        {"1:Key", HKEY_CURRENT_USER, L"Key"},
        {"2:Key", HKEY_LOCAL_MACHINE, L"Key"},
        {"3:Key", HKEY_USERS, L"Key"},
        {"2:SOFTWARE/A%2FB", HKEY_LOCAL_MACHINE, L"SOFTWARE\\A/B"},
        {"2:Key//", HKEY_LOCAL_MACHINE, L"Key"},
        {"2:Key%5C", HKEY_LOCAL_MACHINE, L"Key"},
        {"2:A:B", HKEY_LOCAL_MACHINE, L"A:B"},
        {"2:%41", HKEY_LOCAL_MACHINE, L"%41"},
        {"FOO:Key", HKEY_CLASSES_ROOT, L"Key"}, // not a number: 0
        {"2nd:Key", HKEY_LOCAL_MACHINE, L"Key"},
        {" 3:Key", HKEY_USERS, L"Key"},
        {"-0:Key", HKEY_CLASSES_ROOT, L"Key"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        HKEY root = nullptr;
        OString subkey;
        EXPECT_TRUE(ORegistry::ResolveRoot(row.path, root, subkey));
        EXPECT_EQ(root, row.root);
        EXPECT_STREQ(subkey.Wide(), row.subkey);
    }
}

TEST(ORegistryPath, ResolvesNothingElse) {
    for (const char* const path :
         {"", "Key", ":Key", "2:", "2:/", "2:\\", "4:Key", "7:Key", "-1:Key", "99999999999:Key"}) {
        SCOPED_TRACE(path);
        HKEY root = nullptr;
        OString subkey;
        EXPECT_FALSE(ORegistry::ResolveRoot(path, root, subkey));
    }
}

} // namespace
