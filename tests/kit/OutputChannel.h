// Where a started program's output goes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>

#include "tests/kit/TemporaryFile.h"

namespace kit {

/// Owns a handle.
class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle() { Close(); }

    HANDLE Get() const { return m_handle; }
    void Close() {
        if (m_handle && m_handle != INVALID_HANDLE_VALUE) {
            CloseHandle(m_handle);
        }
        m_handle = nullptr;
    }

  private:
    HANDLE m_handle = nullptr;
};

/// An inheritable handle that reads nothing.
Handle OpenEmptyInput();

/// A pipe or a file that a started program writes into.
class OutputChannel {
  public:
    /// Throws std::runtime_error when the pipe or file cannot be made.
    explicit OutputChannel(bool toFile);

    /// The inheritable end, for the started program.
    HANDLE WriteEnd() const { return m_write.Get(); }
    /// Takes what the pipe holds now.
    void Drain();
    /// All bytes; the program has ended. Does not wait for others that may have inherited the pipe.
    std::string Finish();

  private:
    std::optional<TemporaryFile> m_file;
    Handle m_read;
    Handle m_write;
    std::string m_bytes;
};

} // namespace kit
