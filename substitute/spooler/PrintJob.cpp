// Starting, writing, finishing and deleting a job.
#include "substitute/spooler/PrintJob.h"

#include <winspool.h>

#include "substitute/base/Failure.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kXpsOnly = 0x2; // PRINTER_DRIVER_XPS, which the headers keep for Windows 8 and later

const wchar_t* DataTypeFor(const PrinterHandle& handle) {
    // The attributes come with level 8; a system without it has no drivers of that kind.
    const auto [level, record] = handle.ReadDriver(8, 2);
    if (level == 8 &&
        (reinterpret_cast<const DRIVER_INFO_8W*>(record.data())->dwPrinterDriverAttributes & kXpsOnly)) {
        return L"XPS_PASS";
    }
    return L"RAW";
}

} // namespace

PrintJob::PrintJob(const Printer& printer, const std::wstring& documentName)
    : m_handle(printer.Api(), printer.GetName(), PRINTER_ACCESS_USE) {
    const wchar_t* const dataType = DataTypeFor(m_handle);
    const DWORD error = m_handle.Api().StartDocument(m_handle.Get(), documentName, dataType);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(std::wstring(L"starting a ") + dataType + L" job failed", error);
    }
    const DWORD pageError = m_handle.Api().StartPage(m_handle.Get());
    if (pageError != ERROR_SUCCESS) {
        m_handle.Api().AbortDocument(m_handle.Get()); // no destructor runs for a half-made object
        throw WindowsFailure(L"starting the job's page failed", pageError);
    }
    m_open = true;
}

PrintJob::~PrintJob() {
    if (m_open) {
        m_handle.Api().AbortDocument(m_handle.Get());
    }
}

void PrintJob::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        Check(m_handle.Api().Write(m_handle.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), written),
              L"writing to the job");
        if (written == 0 || written > bytes.size()) {
            throw WindowsFailure(L"writing to the job failed", ERROR_WRITE_FAULT);
        }
        bytes.remove_prefix(written);
    }
}

void PrintJob::Finish() {
    Check(m_handle.Api().EndPage(m_handle.Get()), L"ending the job's page");
    Check(m_handle.Api().EndDocument(m_handle.Get()), L"ending the job");
    m_open = false;
}

void PrintJob::Check(DWORD error, const wchar_t* what) const {
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(std::wstring(what) + L" failed", error);
    }
}

} // namespace kemba::substitute
