// What the server decides on records that come from outside: states, versions, device modes, paths, plans of
// changes.
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "substitute/settings/SettingsPlan.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/DriverVersion.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/StatusText.h"
#include "tests/fuzz/Fuzz.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

/// The words of the bits, the lowest first.
constexpr const wchar_t* kWords[] = {L"Paused",
                                     L"Error",
                                     L"Deleting",
                                     L"Paper jam",
                                     L"Out of paper",
                                     L"Manual feed",
                                     L"Paper problem",
                                     L"Offline",
                                     L"I/O active",
                                     L"Busy",
                                     L"Printing",
                                     L"Output bin full",
                                     L"Not available",
                                     L"Waiting",
                                     L"Processing",
                                     L"Initializing",
                                     L"Warming up",
                                     L"Toner low",
                                     L"No toner",
                                     L"Page could not be printed",
                                     L"User intervention required",
                                     L"Out of memory",
                                     L"Door open",
                                     L"Print server unknown",
                                     L"Power save",
                                     L"Print server offline",
                                     L"Driver update required"};

FUZZ_TARGET(StatusTexts, 10'000) {
    auto status = static_cast<DWORD>(input.OnceIn(8) ? 0 : input.Bits());
    status &= static_cast<DWORD>(input.OnceIn(2) ? input.Bits() & input.Bits() : UINT64_MAX);
    const auto attributes = static_cast<DWORD>(input.Bits());
    const auto jobs = static_cast<DWORD>(input.OnceIn(2) ? input.Below(3) : input.Bits());
    input.Say([&] {
        return "StatusText(" + std::to_string(status) + "U, " + std::to_string(attributes) + "U, " +
               std::to_string(jobs) + "U);";
    });
    std::wstring expected;
    const DWORD shown = status | (attributes & 0x400 ? 0x80U : 0U);
    for (std::size_t bit = 0; bit < std::size(kWords); ++bit) {
        expected += shown >> bit & 1 ? std::wstring(L", ") + kWords[bit] : L"";
    }
    if (const DWORD unknown = shown >> std::size(kWords) << std::size(kWords); unknown != 0) {
        wchar_t number[16];
        wsprintfW(number, L"%X", unknown);
        expected += std::wstring(L", Unknown status 0x") + number;
    }
    expected = expected.empty() ? L", Ready" : expected;
    expected += jobs == 0 ? L"" : L", " + std::to_wstring(jobs) + (jobs == 1 ? L" job" : L" jobs");
    EXPECT_EQ(kemba::substitute::StatusText(status, attributes, jobs), expected.substr(2));
}

/// The day of a number of days since 1601, counted year by year and month by month.
std::wstring DayOf(std::uint64_t days) {
    unsigned year = 1601;
    const auto isLeap = [&] { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; };
    for (std::uint64_t length = 365; days >= length; length = isLeap() ? 366 : 365) {
        days -= length;
        ++year;
        if (days < (isLeap() ? 366U : 365U)) {
            break;
        }
    }
    unsigned month = 0;
    const auto length = [&] {
        constexpr unsigned kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        return kLengths[month] + (month == 1 && isLeap() ? 1U : 0U);
    };
    for (; days >= length(); ++month) {
        days -= length();
    }
    wchar_t text[32];
    wsprintfW(text, L"%04u-%02u-%02u", year, month + 1, static_cast<unsigned>(days) + 1);
    return text;
}

FUZZ_TARGET(DriverVersions, 8000) {
    kemba::substitute::DriverDescription driver{};
    driver.version = input.Bits() >> input.Below(64);
    driver.provider = input.OnceIn(4) ? std::wstring() : input.WideText(30);
    const std::uint64_t date =
        input.OnceIn(4) ? 0 : input.Bits() >> (2 + input.Below(30)); // to the year 15000 or so
    driver.date.dwLowDateTime = static_cast<DWORD>(date);
    driver.date.dwHighDateTime = static_cast<DWORD>(date >> 32);
    input.Say([&] {
        return "version " + std::to_string(driver.version) + ", date " + std::to_string(date) +
               ", provider " + Literal(driver.provider);
    });
    std::wstring version;
    for (std::uint64_t part = std::uint64_t{1} << 48; driver.version != 0 && part > 0; part >>= 16) {
        version += (version.empty() ? L"" : L".") + std::to_wstring(driver.version / part % 65'536);
    }
    if (driver.version != 0) {
        EXPECT_EQ(kemba::substitute::DriverVersionText(driver), version);
    }
    constexpr std::uint64_t kDay = 864'000'000'000;         // in units of 100 nanoseconds
    constexpr std::uint64_t kFiveDigits = 3'067'671 * kDay; // the year 10000
    if (date < kFiveDigits) {
        const std::wstring day = date == 0 ? std::wstring() : DayOf(date / kDay);
        const bool both = !day.empty() && !driver.provider.empty();
        EXPECT_EQ(kemba::substitute::DriverDetailText(driver), driver.provider + (both ? L", " : L"") + day);
    }
}

FUZZ_TARGET(DeviceModes, 20'000) {
    constexpr std::size_t kSmallest = offsetof(DEVMODEW, dmICMMethod);
    const std::size_t lengths[] = {0,
                                   1,
                                   kSmallest - 1,
                                   kSmallest,
                                   sizeof(DEVMODEW),
                                   sizeof(DEVMODEW) + input.Below(60),
                                   input.Below(300)};
    Bytes mode(input.OneOf(lengths));
    for (BYTE& byte : mode) {
        byte = static_cast<BYTE>(input.OnceIn(4) ? 0 : input.Bits());
    }
    std::size_t open = 0;
    std::size_t extra = 0;
    if (mode.size() >= kSmallest) {
        const std::size_t opens[] = {mode.size(),     kSmallest, kSmallest - 1,
                                     mode.size() + 1, 0xFFFF,    input.Below(0x10000)};
        open = input.OneOf(opens);
        const std::size_t extras[] = {0, mode.size() - std::min(mode.size(), open), mode.size(), 0xFFFF,
                                      input.Below(0x10000)};
        extra = input.OneOf(extras);
        const auto put = [&](std::size_t at, std::size_t value) {
            mode[at] = static_cast<BYTE>(value);
            mode[at + 1] = static_cast<BYTE>(value >> 8);
        };
        put(offsetof(DEVMODEW, dmSize), open);
        put(offsetof(DEVMODEW, dmDriverExtra), extra);
    }
    input.Say([&] { return "mode " + Literal(std::string(mode.begin(), mode.end())); });
    const bool trusted = mode.size() >= kSmallest && open >= kSmallest && open + extra <= mode.size();
    EXPECT_EQ(kemba::substitute::ModeSize(mode), trusted ? open + extra : 0);

    Bytes cleared = mode;
    cleared.shrink_to_fit();
    kemba::substitute::ClearTextRemains(cleared);
    for (const std::size_t field : {offsetof(DEVMODEW, dmDeviceName), offsetof(DEVMODEW, dmFormName)}) {
        for (std::size_t unit = 0, zeros = 0; trusted && unit < 32; ++unit) {
            const auto at = mode.begin() + static_cast<std::ptrdiff_t>(field + 2 * unit);
            zeros += at[0] == 0 && at[1] == 0 ? 1 : 0;
            std::fill(at, at + (zeros > 0 ? 2 : 0), BYTE{0});
        }
    }
    EXPECT_EQ(cleared, mode);
}

std::wstring DrawPath(Case& input) {
    constexpr const wchar_t* kPieces[] = {L"\\", L"/", L"\\\\", L"?",   L".",          L"C:",
                                          L"c",  L":", L"UNC",  L"unc", L"GLOBALROOT", L"a b"};
    std::wstring path;
    for (std::size_t left = input.Length(9); left > 0; --left) {
        path += input.OnceIn(10) ? input.WideText(3) : input.OneOf(kPieces);
    }
    return path;
}

FUZZ_TARGET(Paths, 10'000) {
    std::wstring path = DrawPath(input);
    input.Say([&] { return "path " + Literal(path); });
    std::wstring plain = path; // with one kind of separator
    std::replace(plain.begin(), plain.end(), L'/', L'\\');
    const auto isDrive = [](const std::wstring& text) {
        return text.size() >= 3 && text[1] == L':' && text[2] == L'\\';
    };
    const bool absolute = plain.rfind(L"\\\\", 0) == 0 || isDrive(plain);
    EXPECT_EQ(kemba::substitute::IsAbsolutePath(path), absolute);

    const std::size_t name = plain.rfind(L'\\') == plain.npos ? 0 : plain.rfind(L'\\') + 1;
    EXPECT_EQ(kemba::substitute::FolderOf(path), path.substr(0, name));
    EXPECT_EQ(kemba::substitute::FileNameOf(path), path.substr(name));

    bool device = false;
    if (plain.rfind(L"\\\\", 0) == 0) { // further separators there do not count
        const std::wstring rest = plain.substr(std::min(plain.find_first_not_of(L'\\'), plain.size()));
        std::wstring inside = rest.size() > 2 ? rest.substr(2) : std::wstring();
        const bool unc = inside.size() >= 4 && _wcsicmp(inside.substr(0, 4).c_str(), L"UNC\\") == 0;
        const bool letter = !inside.empty() && ((inside[0] | 0x20) >= L'a' && (inside[0] | 0x20) <= L'z');
        device = rest == L"." || rest.rfind(L".\\", 0) == 0 || rest == L"?" ||
                 (rest.rfind(L"?\\", 0) == 0 && !unc && !(letter && isDrive(inside)));
    }
    EXPECT_EQ(kemba::substitute::IsDevicePath(path), device);

    const auto number = static_cast<unsigned>(input.Bits());
    wchar_t temporary[16];
    wsprintfW(temporary, L"~ke%04X.tmp", number % 0x10000);
    EXPECT_EQ(kemba::substitute::TemporaryNameBeside(path, number, L"tmp"), path.substr(0, name) + temporary);
}

FUZZ_TARGET(SettingsPlans, 3000) {
    using kemba::substitute::SettingsStep;
    constexpr DWORD kErrors[] = {ERROR_SUCCESS, ERROR_SUCCESS,       ERROR_SUCCESS,
                                 ERROR_SUCCESS, ERROR_ACCESS_DENIED, ERROR_CALL_NOT_IMPLEMENTED};
    std::vector<SettingsStep> steps(input.Length(10));
    std::vector<std::size_t> calls;    // a step applied is its number, one undone a hundred more
    std::vector<std::size_t> expected; // the same
    DWORD failed = ERROR_SUCCESS;
    std::vector<std::size_t> made;
    for (std::size_t index = 0; index < steps.size(); ++index) {
        const DWORD error = input.OneOf(kErrors);
        const bool throws = input.OnceIn(20);
        steps[index] = {L"step " + std::to_wstring(index),
                        [&calls, index, error, throws]() -> DWORD {
                            calls.push_back(index);
                            return throws ? throw std::bad_alloc() : error;
                        },
                        [&calls, index]() -> DWORD {
                            calls.push_back(index + 100);
                            return ERROR_SUCCESS;
                        },
                        true, input.OnceIn(2)};
        const DWORD outcome = throws ? ERROR_OUTOFMEMORY : error;
        input.Say([&] {
            return "step " + std::to_string(index) + " answers " + std::to_string(outcome) +
                   (steps[index].optional ? ", optional" : "");
        });
        if (failed == ERROR_SUCCESS) {
            expected.push_back(index);
            if (outcome == ERROR_SUCCESS) {
                made.push_back(index);
            } else if (outcome != ERROR_CALL_NOT_IMPLEMENTED || !steps[index].optional) {
                failed = outcome;
            }
        }
    }
    if (failed != ERROR_SUCCESS) {
        std::transform(made.rbegin(), made.rend(), std::back_inserter(expected),
                       [](std::size_t index) { return index + 100; });
    }
    DWORD thrown = ERROR_SUCCESS;
    try {
        kemba::substitute::CarryOut(steps);
    } catch (const kemba::substitute::Failure& failure) {
        thrown = static_cast<DWORD>(failure.status) & 0xFFFF;
    }
    EXPECT_EQ(thrown, failed);
    EXPECT_EQ(calls, expected);
}

} // namespace
