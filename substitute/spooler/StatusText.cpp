// The words of the status bits.
#include "substitute/spooler/StatusText.h"

#include <winspool.h>

#include <string>

#include "substitute/base/NumberText.h"

namespace kemba::substitute {
namespace {

struct StatusWord {
    DWORD bit;
    const wchar_t* word;
};

constexpr StatusWord kStatusWords[] = {
    {PRINTER_STATUS_PAUSED, L"Paused"},
    {PRINTER_STATUS_ERROR, L"Error"},
    {PRINTER_STATUS_PENDING_DELETION, L"Deleting"},
    {PRINTER_STATUS_PAPER_JAM, L"Paper jam"},
    {PRINTER_STATUS_PAPER_OUT, L"Out of paper"},
    {PRINTER_STATUS_MANUAL_FEED, L"Manual feed"},
    {PRINTER_STATUS_PAPER_PROBLEM, L"Paper problem"},
    {PRINTER_STATUS_OFFLINE, L"Offline"},
    {PRINTER_STATUS_IO_ACTIVE, L"I/O active"},
    {PRINTER_STATUS_BUSY, L"Busy"},
    {PRINTER_STATUS_PRINTING, L"Printing"},
    {PRINTER_STATUS_OUTPUT_BIN_FULL, L"Output bin full"},
    {PRINTER_STATUS_NOT_AVAILABLE, L"Not available"},
    {PRINTER_STATUS_WAITING, L"Waiting"},
    {PRINTER_STATUS_PROCESSING, L"Processing"},
    {PRINTER_STATUS_INITIALIZING, L"Initializing"},
    {PRINTER_STATUS_WARMING_UP, L"Warming up"},
    {PRINTER_STATUS_TONER_LOW, L"Toner low"},
    {PRINTER_STATUS_NO_TONER, L"No toner"},
    {PRINTER_STATUS_PAGE_PUNT, L"Page could not be printed"},
    {PRINTER_STATUS_USER_INTERVENTION, L"User intervention required"},
    {PRINTER_STATUS_OUT_OF_MEMORY, L"Out of memory"},
    {PRINTER_STATUS_DOOR_OPEN, L"Door open"},
    {PRINTER_STATUS_SERVER_UNKNOWN, L"Print server unknown"},
    {PRINTER_STATUS_POWER_SAVE, L"Power save"},
    {0x2000000, L"Print server offline"},   // PRINTER_STATUS_SERVER_OFFLINE, not in every header
    {0x4000000, L"Driver update required"}, // PRINTER_STATUS_DRIVER_UPDATE_NEEDED, likewise
};

void AppendItem(std::wstring& list, const std::wstring& item) {
    list.append(list.empty() ? L"" : L", ").append(item);
}

} // namespace

std::wstring StatusText(DWORD status, DWORD attributes, DWORD jobs) {
    if (attributes & PRINTER_ATTRIBUTE_WORK_OFFLINE) {
        // Set by the user or by a port monitor whose device is unplugged; the status bit stays clear then.
        status |= PRINTER_STATUS_OFFLINE;
    }
    std::wstring text;
    DWORD unknown = status;
    for (const StatusWord& row : kStatusWords) {
        if (status & row.bit) {
            AppendItem(text, row.word);
            unknown &= ~row.bit;
        }
    }
    if (unknown != 0) {
        AppendItem(text, L"Unknown status 0x" + NumberText(unknown, 1, kHexadecimalDigits));
    }
    if (text.empty()) {
        text = L"Ready";
    }
    if (jobs != 0) {
        AppendItem(text, NumberText(jobs) + (jobs == 1 ? L" job" : L" jobs"));
    }
    return text;
}

} // namespace kemba::substitute
