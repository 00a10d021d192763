// A driver's version in words.
#include "substitute/spooler/DriverVersion.h"

#include <string>

#include "substitute/base/FileVersion.h"
#include "substitute/base/NumberText.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {
namespace {

std::wstring DateText(const FILETIME& date) {
    SYSTEMTIME day = {};
    if ((date.dwLowDateTime == 0 && date.dwHighDateTime == 0) || !FileTimeToSystemTime(&date, &day)) {
        return {};
    }
    return NumberText(day.wYear, 4) + L"-" + NumberText(day.wMonth, 2) + L"-" + NumberText(day.wDay, 2);
}

} // namespace

std::wstring DriverVersionText(const DriverDescription& driver) {
    const DWORDLONG version = driver.version != 0 ? driver.version : VersionOfFile(driver.path);
    if (version == 0) {
        return {};
    }
    std::wstring text;
    for (const int shift : {48, 32, 16, 0}) {
        text.append(text.empty() ? L"" : L".").append(NumberText(version >> shift & 0xFFFF));
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
