// The buffered byte stream with text output in a chosen code page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/OString.h"

namespace OCore {

/// Base of all streams: a kind of stream supplies `WriteRaw`, and flushes in its own destructor if it wants
/// to. No operation throws or reports text.
class OStream {
  public:
    /// What `Write` does when the buffer is full.
    enum class GrowthMode : std::uint32_t { Flush = 0, Grow = 1 };

    OStream();
    OStream(const OStream&) = delete;
    OStream& operator=(const OStream&) = delete;
    virtual ~OStream();

    /// Writes bytes past the buffer; returns how many were written.
    virtual std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) = 0;
    /// Writes bytes through the buffer; returns `count`, or 0 when flushing or growing the buffer failed.
    virtual std::uint32_t Write(const void* bytes, std::uint32_t count);
    /// Writes out and empties the buffer; returns what `WriteRaw` returned, or 0 when the buffer was empty.
    virtual std::uint32_t Flush();

    /// Writes the text in the stream's code page.
    void WriteText(const OString& text);
    /// Writes a zero-terminated 8-bit text as it is; null writes nothing.
    void WriteText(const char* text);

    /// Flushes, then makes the buffer `size` bytes; with 0, writes go straight through.
    void SetBufferSize(std::uint32_t size);

    std::uint32_t GetBufferSize() const { return m_bufferSize; }
    std::uint32_t GetFill() const { return m_fill; }
    std::uint32_t GetCodePage() const { return m_codePage; }
    void SetCodePage(std::uint32_t codePage) { m_codePage = codePage; }
    void SetGrowthMode(GrowthMode mode) { m_growthMode = mode; }

    OStream& operator<<(const OString& text);
    OStream& operator<<(const char* text);
    /// Calls the manipulator with this stream.
    OStream& operator<<(OStream& (*manipulator)(OStream&));

  private:
    bool Grow(std::uint32_t count);

    std::unique_ptr<std::byte[]> m_buffer;
    std::uint32_t m_bufferSize = 0;
    std::uint32_t m_fill = 0;
    std::uint32_t m_codePage = kCodePageAnsi;
    GrowthMode m_growthMode = GrowthMode::Flush;
};

/// Manipulator: ends the line with CR LF; does not flush.
OStream& EndOfLine(OStream& stream);

} // namespace OCore
