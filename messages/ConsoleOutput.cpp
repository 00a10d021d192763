// Console writer.
#include "messages/ConsoleOutput.h"

#include <fcntl.h>
#include <io.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "core/OStream.h"
#include "core/OString.h"

namespace {

constexpr std::size_t kRuntimeBufferSize = 4096; // bytes; as it has them for files

} // namespace

ConsoleOutput::ConsoleOutput(const bool& quiet) : m_quiet(&quiet) {
    SetBufferSize(0);
    // The runtime library gives a console no buffer and writes to it byte by byte. With one, each text is
    // written at once, for every text is flushed.
    static_cast<void>(std::setvbuf(stdout, nullptr, _IOFBF, kRuntimeBufferSize));
}

std::uint32_t ConsoleOutput::WriteRaw(const void* bytes, std::uint32_t count) {
    if (!*m_quiet) {
        // The texts carry their own CR LF, to which a stream in text mode would add another CR.
        _setmode(_fileno(stdout), _O_BINARY);
        static_cast<void>(std::fwrite(bytes, 1, count, stdout));
        static_cast<void>(std::fflush(stdout));
    }
    return count;
}

void ConsoleOutput::PrintMessage(const OString& key) {
    PrintText(FetchMessage(key));
}

void ConsoleOutput::PrintMessage(const OString& key, const OString& argument) {
    PrintText(FetchMessage(key).ReplaceAll("%1", argument));
}

void ConsoleOutput::PrintText(const OString& text) {
    *this << text << OCore::EndOfLine;
}

OString ConsoleOutput::FetchMessage(const OString& key) {
    return m_catalogue.GetText(key);
}
