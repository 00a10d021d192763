// Captures the bytes that leave the C runtime's standard output.
#pragma once

#include <string>

#include "tests/kit/TemporaryFile.h"

namespace kit {

/// Sends standard output into a file from construction until `Finish` or the end of its scope.
///
/// The stream keeps its mode, so that text mode shows what it would write in a program of its own; a mode
/// that was changed in between is put back.
class StdoutCapture {
  public:
    /// Throws std::runtime_error when the stream cannot be redirected.
    StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    ~StdoutCapture();

    /// Ends the capture and gives the bytes; they are there once.
    std::string Finish();

  private:
    void Restore();

    TemporaryFile m_file;
    int m_mode = 0;
    int m_original = -1; // the descriptor that standard output had; -1: put back
};

} // namespace kit
