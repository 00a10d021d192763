// kemba.exe where the registry holds for its log what it never wrote there, or lets nobody in.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "demo/Printers.h"
#include "tests/kit/KeyRights.h"
#include "tests/kit/Printed.h"
#include "tests/kit/ProcessRun.h"
#include "tests/kit/RegistryPreset.h"
#include "tests/programs/Kemba.h"

using namespace kit;

namespace {

constexpr wchar_t kMasks[] = L"SOFTWARE\\Brandle\\Drivers\\DebugLogMasks";

void ExpectAnUnknownCommand() {
    const ProcessResult run = Kemba({L"bogus"});
    EXPECT_EQ(run.output, "The command 'bogus' is unknown.\r\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 2U);
    EXPECT_FALSE(run.timedOut);
}

TEST(KembaRegistry, TakesAMaskOfAnyTypeAndSize) {
    const RegistryPreset mask(HKEY_LOCAL_MACHINE, kMasks, L"Brandle KEMBA CLI");
    for (DWORD type = REG_NONE; type <= REG_QWORD; ++type) {
        SCOPED_TRACE(type);
        // All bits: the line of all words is composed, too.
        mask.Set(RegistryData::OfBytes(type, std::vector<BYTE>(4, 0xFF)));
        ExpectAnUnknownCommand();
    }
    for (const std::size_t size : {0, 3, 16}) {
        SCOPED_TRACE(size);
        mask.Set(RegistryData::OfBytes(REG_BINARY, std::vector<BYTE>(size, 0xFF)));
        ExpectAnUnknownCommand();
    }
    mask.Remove();
    ExpectAnUnknownCommand();
}

TEST(KembaRegistry, WorksWhereTheRegistryIsDenied) {
    const demo::Printer printer({.comment = L"by the door"});
    const RegistryPreset mask(HKEY_LOCAL_MACHINE, kMasks, L"Brandle KEMBA CLI");
    mask.Set(RegistryData::OfDword(0x10000000)); // so that the key is there
    for (const DWORD rights : {DWORD{0}, DWORD{KEY_READ}, DWORD{KEY_WRITE}}) {
        SCOPED_TRACE(rights);
        const KeyRights few(HKEY_LOCAL_MACHINE, kMasks, rights);
        ExpectAnUnknownCommand();
        const ProcessResult run = Kemba({L"/p", printer.Name(), L"get", L"comment"});
        EXPECT_EQ(run.output, Framed("Get", {Printed(printer.Name()) + ": by the door"}));
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.status, 0U);
    }
    EXPECT_EQ(mask.Get(), RegistryData::OfDword(0x10000000));
}

} // namespace
