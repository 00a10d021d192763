// The stream over a Windows file handle.
#pragma once

#include <cstdint>

#include "core/Handles.h"
#include "core/OStream.h"
#include "core/OString.h"

/// A file. Sizes and positions are 32-bit by design: files of 4 GiB or more are not supported.
/// Operations on a closed file return 0 or false; a failed read or write returns 0.
class OFile : public OCore::OStream {
  public:
    /// Open mode bits; the sharing values exclude each other, and without one reads and writes are shared.
    enum Mode : std::uint32_t {
        kRead = 0x0000,
        kWrite = 0x0001, ///< read and write; truncates unless `kAppend`
        kShareMask = 0x00F0,
        kShareNone = 0x0010,
        kShareRead = 0x0020,
        kShareWrite = 0x0030,
        kOpenAlways = 0x1000, ///< create a missing file
        kAppend = 0x2000,     ///< with `kWrite`: start at the end
    };

    OFile() = default;
    ~OFile() override;

    std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) override;

    /// Opens a file by name, closing the one that was open; true when a handle was obtained.
    virtual bool Open(const OString& name, std::uint32_t mode);
    /// Flushes and closes.
    virtual void Close();
    /// Flushes and moves by a `SetFilePointer` method; returns the low 32 bits of the new position.
    virtual std::uint32_t Seek(std::int32_t distance, std::uint32_t method);
    /// The low 32 bits of the size in bytes.
    virtual std::uint32_t GetSize();
    /// Reads up to `count` bytes; returns how many were read.
    virtual std::uint32_t Read(void* buffer, std::uint32_t count);

    const OString& Name() const { return m_name; }

    /// Whether the file can be opened for reading, others reading and writing it.
    static bool Exists(const OString& name);

  private:
    OCore::UniqueHandle m_handle; // none when closed
    OString m_name;
};
