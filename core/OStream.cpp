// Buffered writing and text output.
#include "core/OStream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "core/OString.h"

namespace OCore {
namespace {

constexpr std::uint32_t kInitialBufferSize = 1024;

} // namespace

OStream::OStream()
    : m_buffer(std::make_unique<std::byte[]>(kInitialBufferSize)), m_bufferSize(kInitialBufferSize) {}

OStream::~OStream() = default;

std::uint32_t OStream::Write(const void* bytes, std::uint32_t count) {
    if (m_bufferSize == 0) {
        return WriteRaw(bytes, count);
    }
    if (m_growthMode == GrowthMode::Grow && !Grow(count)) {
        return 0;
    }
    const auto* from = static_cast<const std::byte*>(bytes);
    for (std::uint32_t left = count; left > 0;) {
        const std::uint32_t part = std::min(left, m_bufferSize - m_fill);
        std::memcpy(m_buffer.get() + m_fill, from, part);
        m_fill += part;
        from += part;
        left -= part;
        if (m_fill == m_bufferSize && Flush() < m_bufferSize) {
            return 0;
        }
    }
    return count;
}

std::uint32_t OStream::Flush() {
    if (m_fill == 0) {
        return 0;
    }
    const std::uint32_t written = WriteRaw(m_buffer.get(), m_fill);
    m_fill = 0;
    return written;
}

void OStream::WriteText(const OString& text) {
    const OString inCodePage = text.GetCodePage() == m_codePage ? text : text.InCodePage(m_codePage);
    WriteText(inCodePage.Narrow());
}

void OStream::WriteText(const char* text) {
    if (text) {
        Write(text, static_cast<std::uint32_t>(std::strlen(text)));
    }
}

void OStream::SetBufferSize(std::uint32_t size) {
    Flush();
    if (size != m_bufferSize) {
        m_buffer = std::make_unique<std::byte[]>(size);
        m_bufferSize = size;
    }
}

OStream& OStream::operator<<(const OString& text) {
    WriteText(text);
    return *this;
}

OStream& OStream::operator<<(const char* text) {
    WriteText(text);
    return *this;
}

OStream& OStream::operator<<(OStream& (*manipulator)(OStream&)) {
    return manipulator(*this);
}

/// Doubles the buffer until more than `count` bytes are free.
bool OStream::Grow(std::uint32_t count) {
    std::uint64_t size = m_bufferSize;
    while (size - m_fill <= count) {
        size *= 2;
    }
    if (size == m_bufferSize) {
        return true;
    }
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        return false;
    }
    std::unique_ptr<std::byte[]> grown(new (std::nothrow) std::byte[size]);
    if (!grown) {
        return false;
    }
    std::memcpy(grown.get(), m_buffer.get(), m_fill);
    m_buffer = std::move(grown);
    m_bufferSize = static_cast<std::uint32_t>(size);
    return true;
}

OStream& EndOfLine(OStream& stream) {
    return stream << "\r\n";
}

} // namespace OCore
