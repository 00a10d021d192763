// Where a started program's output goes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFile.h"

namespace kit {

/// For handles that started programs get.
SECURITY_ATTRIBUTES Inheritable();

/// An inheritable handle that reads nothing.
UniqueHandle OpenEmptyInput();

/// A pipe or a file that a started program writes into.
class OutputChannel {
  public:
    /// Throws std::runtime_error when the pipe or file cannot be made.
    explicit OutputChannel(bool toFile);

    /// The inheritable end, for the started program.
    HANDLE WriteEnd() const { return m_write.get(); }
    /// Takes what the pipe holds now.
    void Drain();
    /// All bytes; the program has ended. Does not wait for others that may have inherited the pipe.
    std::string Finish();

  private:
    std::optional<TemporaryFile> m_file;
    UniqueHandle m_read;
    UniqueHandle m_write;
    std::string m_bytes;
};

} // namespace kit
