// Selection: all, named and default printers, on Wine's spooler and, for systems of the past, behind the
// seam.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <optional>
#include <string>
#include <vector>

#include "cli/ApplicationSettings.h"
#include "cli/PrinterSelection.h"
#include "core/OArray.h"
#include "core/SystemCalls.h"
#include "demo/Printers.h"
#include "demo/SpoolerLock.h"
#include "tests/cli/Console.h"
#include "tests/kit/SetAside.h"

using namespace kemba;
using namespace kit;

namespace {

using Names = std::vector<std::wstring>;

struct Selection {
    bool succeeded = false;
    Names names;
    std::string output;
};

Selection Select(const ApplicationSettings& settings) {
    CapturedConsole console;
    OStringArray names;
    OCore::RequireMemory(names.Append(L"left over"));
    Selection selection;
    selection.succeeded = kemba::SelectPrinters(settings, names, console);
    for (const OString& name : names) {
        selection.names.emplace_back(name.Wide());
    }
    selection.output = console.Output();
    return selection;
}

/// Settings with these printer names.
struct Named : ApplicationSettings {
    explicit Named(const Names& names) {
        for (const std::wstring& name : names) {
            OCore::RequireMemory(printerNames.Append(name.c_str()));
        }
    }
};

const std::string kNoPrinter = "No printers selected for this operation.\r\n";

/// The spooler calls behind the seam: what is asked, and what is answered.
struct FakeSpooler {
    DWORD flags = 0;
    DWORD level = 0;
    int calls = 0;
    bool sizingSucceeds = false;
    DWORD sizingError = ERROR_INSUFFICIENT_BUFFER;
    bool fillingSucceeds = true;
    Names names;
};
FakeSpooler spooler;

template<class Entry, wchar_t* Entry::* Name>
BOOL WINAPI FakeEnumPrinters(DWORD flags, wchar_t* server, DWORD level, BYTE* buffer, DWORD size,
                             DWORD* needed, DWORD* count) {
    ++spooler.calls;
    spooler.flags = flags;
    spooler.level = level;
    EXPECT_EQ(server, nullptr);
    *needed =
        static_cast<DWORD>(spooler.names.size() * sizeof(Entry) + 1); // one byte more than the entries take
    *count = 0;
    if (!buffer) {
        EXPECT_EQ(size, 0U);
        SetLastError(spooler.sizingError);
        return spooler.sizingSucceeds;
    }
    EXPECT_EQ(size, *needed);
    auto* const entries = reinterpret_cast<Entry*>(buffer);
    for (std::size_t index = 0; index < spooler.names.size(); ++index) {
        entries[index] = Entry{};
        entries[index].*Name = spooler.names[index].data();
    }
    *count = static_cast<DWORD>(spooler.names.size());
    return spooler.fillingSucceeds;
}

template<DWORD Platform, DWORD Major>
BOOL WINAPI FakeVersion(OSVERSIONINFOW* version) {
    EXPECT_EQ(version->dwOSVersionInfoSize, sizeof(OSVERSIONINFOW));
    version->dwPlatformId = Platform;
    version->dwMajorVersion = Major;
    return TRUE;
}

std::wstring profileDevice;

DWORD WINAPI FakeProfile(const wchar_t* section, const wchar_t* key, const wchar_t* missing, wchar_t* buffer,
                         DWORD size) {
    EXPECT_STREQ(section, L"windows");
    EXPECT_STREQ(key, L"device");
    EXPECT_STREQ(missing, L"");
    EXPECT_EQ(size, 260U);
    const std::size_t count = std::min<std::size_t>(profileDevice.size(), size - 1);
    buffer[profileDevice.copy(buffer, count)] = 0;
    return static_cast<DWORD>(count);
}

std::wstring spoolerDefault;
DWORD spoolerDefaultError = ERROR_INSUFFICIENT_BUFFER;
bool spoolerDefaultVanishes = false;

BOOL WINAPI FakeGetDefaultPrinter(wchar_t* buffer, DWORD* size) {
    if (!buffer) {
        EXPECT_EQ(*size, 0U);
        *size = static_cast<DWORD>(spoolerDefault.size() + 1);
        SetLastError(spoolerDefaultError);
        return FALSE;
    }
    EXPECT_EQ(*size, spoolerDefault.size() + 1);
    std::memcpy(buffer, spoolerDefault.c_str(), *size * sizeof(wchar_t));
    return !spoolerDefaultVanishes;
}

TEST(PrinterSelection, NamedPrintersAreThoseThatExistAsTyped) {
    const demo::Printer printer;
    std::wstring typed = printer.Name();
    std::transform(typed.begin(), typed.end(), typed.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(towupper(unit)); });
    const Selection selection = Select(Named({typed}));
    EXPECT_TRUE(selection.succeeded);
    EXPECT_EQ(selection.names, Names{typed}) << "the name is kept as typed, not as the spooler has it";
    EXPECT_EQ(selection.output, "");
}

TEST(PrinterSelection, UnknownNamesAreReportedAndTheOthersKept) {
    const demo::Printer printer;
    const Selection selection = Select(Named({L"Nobody", printer.Name(), L"", L"50% %1"}));
    EXPECT_TRUE(selection.succeeded);
    EXPECT_EQ(selection.names, Names{printer.Name()});
    EXPECT_EQ(selection.output, "The printer 'Nobody' is not found.\r\nThe printer '' is not found.\r\n"
                                "The printer '50% %1' is not found.\r\n");
}

TEST(PrinterSelection, ANameGivenTwiceIsSelectedTwice) {
    const demo::Printer printer;
    EXPECT_EQ(Select(Named({printer.Name(), printer.Name()})).names, (Names{printer.Name(), printer.Name()}));
}

TEST(PrinterSelection, OnlyUnknownNamesAreNoSelection) {
    const Selection selection = Select(Named({L"Nobody"}));
    EXPECT_FALSE(selection.succeeded);
    EXPECT_EQ(selection.names, Names{});
    EXPECT_EQ(selection.output, "The printer 'Nobody' is not found.\r\n" + kNoPrinter);
}

TEST(PrinterSelection, AllPrintersComeInTheSpoolersOrderAndNamesAreNotChecked) {
    const demo::SpoolerLock lock;
    const demo::Printer one;
    const demo::Printer two;
    Named settings({L"Missing"});
    settings.allPrinters = true;
    const Selection selection = Select(settings);
    EXPECT_TRUE(selection.succeeded);
    EXPECT_EQ(selection.output, "");
    for (const demo::Printer* const printer : {&one, &two}) {
        EXPECT_NE(std::find(selection.names.begin(), selection.names.end(), printer->Name()),
                  selection.names.end());
    }
}

struct DefaultPrinter : testing::Test {
    const SystemCallsPreset calls;
};

class AllPrinters : public DefaultPrinter {
  protected:
    AllPrinters() {
        calls->enumPrinters = &FakeEnumPrinters<PRINTER_INFO_1W, &PRINTER_INFO_1W::pName>;
        spooler = {};
        spooler.names = {L"B", L"A", L"C"};
        settings.allPrinters = true;
    }
    ApplicationSettings settings;
};

TEST_F(AllPrinters, AreAskedForAsLocalOnesAndConnectionsOfLevel1) {
    EXPECT_EQ(Select(settings).names, (Names{L"B", L"A", L"C"}));
    EXPECT_EQ(spooler.flags, 6U);
    EXPECT_EQ(spooler.level, 1U);
    EXPECT_EQ(spooler.calls, 2);
}

TEST_F(AllPrinters, AnyFailureOfTheSizingCallLeadsToTheRealOne) {
    spooler.sizingError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(Select(settings).names.size(), 3U);
}

TEST_F(AllPrinters, ASizingCallThatSucceedsMeansThatThereIsNone) {
    spooler.sizingSucceeds = true;
    const Selection selection = Select(settings);
    EXPECT_FALSE(selection.succeeded);
    EXPECT_EQ(selection.output, kNoPrinter);
    EXPECT_EQ(spooler.calls, 1);
}

TEST_F(AllPrinters, AFailedOrEmptyRealCallGivesNone) {
    spooler.fillingSucceeds = false;
    EXPECT_EQ(Select(settings).output, kNoPrinter);
    spooler.fillingSucceeds = true;
    spooler.names.clear();
    EXPECT_EQ(Select(settings).output, kNoPrinter);
}

TEST(PrinterSelection, WithoutNamesTheDefaultPrinterIsSelected) {
    const demo::SpoolerLock lock;
    const demo::Printer printer;
    const demo::DefaultPrinter asDefault(printer.Name());
    const Selection selection = Select({});
    EXPECT_TRUE(selection.succeeded);
    EXPECT_EQ(selection.names, Names{printer.Name()});
    EXPECT_EQ(selection.output, "");
}

TEST(PrinterSelection, WithoutADefaultPrinterNothingIsSelected) {
    const demo::SpoolerLock lock;
    const demo::DefaultPrinter none(std::nullopt);
    const Selection selection = Select({});
    EXPECT_FALSE(selection.succeeded);
    EXPECT_EQ(selection.output, kNoPrinter);
}

TEST_F(DefaultPrinter, ComesFromTheSpoolerSinceVersion5) {
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32_NT, 5>;
    calls->findGetDefaultPrinter = [] { return &FakeGetDefaultPrinter; };
    calls->getProfileString = nullptr;
    spoolerDefault = L"Label A, the first";
    EXPECT_STREQ(DefaultPrinterName().Wide(), L"Label A, the first");
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32_NT, 10>;
    EXPECT_STREQ(DefaultPrinterName().Wide(), L"Label A, the first");
}

TEST_F(DefaultPrinter, AnyOtherFailureOfTheSpoolerGivesNone) {
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32_NT, 6>;
    calls->findGetDefaultPrinter = [] { return &FakeGetDefaultPrinter; };
    spoolerDefault = L"Label A";
    spoolerDefaultVanishes = true;
    EXPECT_TRUE(DefaultPrinterName().IsEmpty()) << "the second call failed";
    spoolerDefaultVanishes = false;
    spoolerDefaultError = ERROR_FILE_NOT_FOUND;
    EXPECT_TRUE(DefaultPrinterName().IsEmpty()) << "no default printer";
    calls->findGetDefaultPrinter = [] { return decltype(&::GetDefaultPrinterW)(); };
    EXPECT_TRUE(DefaultPrinterName().IsEmpty()) << "no such call";
}

TEST_F(DefaultPrinter, ComesFromTheProfileBeforeVersion5) {
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32_NT, 4>;
    calls->getProfileString = &FakeProfile;
    calls->findGetDefaultPrinter = [] { return decltype(&::GetDefaultPrinterW)(); };
    struct Row {
        const wchar_t* device;
        const wchar_t* name;
    };
    constexpr Row kRows[] = {
        {L"Label A,winspool,LPT1:", L"Label A"}, {L"Label A", L"Label A"}, {L",winspool", L""}, {L"", L""}};
    for (const Row& row : kRows) {
        profileDevice = row.device;
        EXPECT_STREQ(DefaultPrinterName().Wide(), row.name);
    }
}

TEST_F(DefaultPrinter, ComesFromAnEnumerationOnWindows9x) {
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32_WINDOWS, 4>;
    calls->enumPrinters = &FakeEnumPrinters<PRINTER_INFO_5W, &PRINTER_INFO_5W::pPrinterName>;
    spooler = {};
    spooler.names = {L"Label A", L"Label B"};
    EXPECT_STREQ(DefaultPrinterName().Wide(), L"Label A");
    EXPECT_EQ(spooler.flags, 1U);
    EXPECT_EQ(spooler.level, 5U);

    spooler.sizingError = ERROR_ACCESS_DENIED;
    EXPECT_TRUE(DefaultPrinterName().IsEmpty()) << "only a buffer that is too small leads to the second call";
    spooler.sizingError = ERROR_INSUFFICIENT_BUFFER;
    spooler.fillingSucceeds = false;
    EXPECT_TRUE(DefaultPrinterName().IsEmpty());
    spooler.fillingSucceeds = true;
    spooler.names.clear();
    EXPECT_TRUE(DefaultPrinterName().IsEmpty());
}

TEST_F(DefaultPrinter, IsUnknownOnAnyOtherPlatform) {
    calls->getVersionEx = &FakeVersion<VER_PLATFORM_WIN32s, 6>;
    EXPECT_TRUE(DefaultPrinterName().IsEmpty());
}

} // namespace
