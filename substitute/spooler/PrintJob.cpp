// Starting, writing, finishing and deleting a job.
#include "substitute/spooler/PrintJob.h"

#include <string>
#include <string_view>
#include <utility>

#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterHandle.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kXpsOnly = 0x2; // PRINTER_DRIVER_XPS, which the headers keep for Windows 8 and later

/// A driver that does not tell of itself is not one of those that take XPS only, which are younger.
const wchar_t* DataTypeFor(const PrinterHandle& handle) {
    try {
        return DescribeDriver(handle).attributes & kXpsOnly ? L"XPS_PASS" : L"RAW";
    } catch (const Failure&) {
        return L"RAW";
    }
}

} // namespace

PrintJob::PrintJob(const Printer& printer, const std::wstring& documentName)
    : m_handle(printer.Open(PRINTER_ACCESS_USE)) {
    const wchar_t* const dataType = DataTypeFor(m_handle);
    const DWORD error = m_handle.GetSpooler().StartDocument(m_handle.Get(), documentName, dataType, m_job);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(std::wstring(L"starting a ") + dataType + L" job failed", error);
    }
    Check(m_handle.GetSpooler().StartPage(m_handle.Get()), L"starting the job's page");
}

PrintJob::~PrintJob() {
    Delete();
}

void PrintJob::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        DWORD error = m_handle.GetSpooler().Write(m_handle.Get(), bytes.data(),
                                                  static_cast<DWORD>(bytes.size()), written);
        if (error == ERROR_SUCCESS && (written == 0 || written > bytes.size())) {
            error = ERROR_WRITE_FAULT;
        }
        Check(error, L"writing to the job");
        bytes.remove_prefix(written);
    }
}

void PrintJob::Finish() {
    Check(m_handle.GetSpooler().EndPage(m_handle.Get()), L"ending the job's page");
    Check(m_handle.GetSpooler().EndDocument(m_handle.Get()), L"ending the job");
    m_job = 0;
}

/// A failed call's job is deleted at once, so that the failure can tell whether it is still there.
void PrintJob::Check(DWORD error, const wchar_t* what) {
    if (error == ERROR_SUCCESS) {
        return;
    }
    const DWORD job = m_job;
    const DWORD left = Delete();
    Failure failure = WindowsFailure(std::wstring(what) + L" failed", error);
    if (left != ERROR_SUCCESS) {
        failure.reason +=
            L"; " + WindowsFailure(L"job " + NumberText(job) + L" could not be deleted", left).reason;
    }
    throw failure;
}

/// Gives the job up and takes it out of the queue, where it may stay when its end failed.
DWORD PrintJob::Delete() noexcept {
    const DWORD job = std::exchange(m_job, 0);
    if (job == 0) {
        return ERROR_SUCCESS;
    }
    const DWORD aborted = m_handle.GetSpooler().AbortDocument(m_handle.Get());
    const DWORD deleted = m_handle.GetSpooler().DeleteJob(m_handle.Get(), job);
    // A job that has been given up is not there any more.
    return aborted == ERROR_SUCCESS || deleted == ERROR_INVALID_PARAMETER ? ERROR_SUCCESS : deleted;
}

} // namespace kemba::substitute
