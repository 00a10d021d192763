// A driver's version in words.
#include "substitute/spooler/DriverVersion.h"

#include <cwchar>
#include <iterator>
#include <string>

#include "substitute/base/FileVersion.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {
namespace {

std::wstring DateText(const FILETIME& date) {
    SYSTEMTIME day = {};
    if ((date.dwLowDateTime == 0 && date.dwHighDateTime == 0) || !FileTimeToSystemTime(&date, &day)) {
        return {};
    }
    wchar_t text[16] = {};
    static_cast<void>(std::swprintf(text, std::size(text), L"%04u-%02u-%02u",
                                    static_cast<unsigned>(day.wYear), static_cast<unsigned>(day.wMonth),
                                    static_cast<unsigned>(day.wDay)));
    return text;
}

} // namespace

std::wstring DriverVersionText(const DriverDescription& driver) {
    const DWORDLONG version = driver.version != 0 ? driver.version : VersionOfFile(driver.path);
    if (version == 0) {
        return {};
    }
    std::wstring text;
    for (const int shift : {48, 32, 16, 0}) {
        text.append(text.empty() ? L"" : L".").append(std::to_wstring(version >> shift & 0xFFFF));
    }
    return text;
}

std::wstring DriverDetailText(const DriverDescription& driver) {
    std::wstring text = driver.provider;
    if (const std::wstring date = DateText(driver.date); !date.empty()) {
        text.append(text.empty() ? L"" : L", ").append(date);
    }
    return text;
}

} // namespace kemba::substitute
