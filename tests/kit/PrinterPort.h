// A printer port of a test's own whose other end is a file.
#pragma once

#include <cstddef>
#include <string>

#include "tests/kit/TemporaryFile.h"

namespace kit {

/// Takes what is printed to it: demo::Printer printer({.port = port.Name()}). On Wine it collects the jobs,
/// on Windows each job replaces the one before it.
class PrinterPort {
  public:
    PrinterPort();
    PrinterPort(const PrinterPort&) = delete;
    PrinterPort& operator=(const PrinterPort&) = delete;
    ~PrinterPort();

    const std::wstring& Name() const { return m_name; }
    /// The bytes that are there. They come through another process: waits some seconds for that many at
    /// least.
    std::string Received(std::size_t count) const;

  private:
    TemporaryFile m_file;
    std::wstring m_name;
};

} // namespace kit
