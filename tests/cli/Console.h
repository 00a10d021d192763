// A console whose output a test looks at.
#pragma once

#include <string>

#include "messages/ConsoleOutput.h"
#include "tests/kit/StdoutCapture.h"

namespace kit {

/// Captures from construction until `Output`.
class CapturedConsole {
  public:
    operator ConsoleOutput&() { return m_console; }
    std::string Output() { return m_capture.Finish(); }

  private:
    bool m_quiet = false;
    ConsoleOutput m_console{m_quiet};
    StdoutCapture m_capture;
};

} // namespace kit
