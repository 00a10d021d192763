// One job that hands a printer bytes as they are.
#pragma once

#include <string>
#include <string_view>

#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterHandle.h"

namespace kemba::substitute {

/// A job in the data type that the printer's driver passes through unchanged: RAW, or XPS_PASS for a driver
/// that takes XPS only, where a RAW job would vanish without a word. Either Finish() succeeds, or the job is
/// deleted again, in the end at the latest.
class PrintJob {
  public:
    /// Starts the job. Throws Failure.
    PrintJob(const Printer& printer, const std::wstring& documentName);
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;
    ~PrintJob();

    /// Writes all of the bytes. Throws Failure.
    void Write(std::string_view bytes);
    /// Hands the job over to the printer. Throws Failure.
    void Finish();

  private:
    void Check(DWORD error, const wchar_t* what);
    DWORD Delete() noexcept;

    const PrinterHandle m_handle;
    DWORD m_job = 0; // 0 once there is nothing to delete
};

} // namespace kemba::substitute
