// The one channel to the user: catalogue messages and plain lines on standard output, nothing in quiet mode.
#pragma once

#include <cstdint>

#include "core/OStream.h"
#include "core/OString.h"
#include "messages/TextResource.h"

/// Writes to the runtime library's standard output in the ANSI code page, unbuffered, each message followed
/// by one CR LF. Write failures are not reported.
class ConsoleOutput : public OCore::OStream {
  public:
    /// `quiet` is looked at on every write and must outlive the writer.
    explicit ConsoleOutput(const bool& quiet);

    /// Writes the bytes, or drops them when quiet; returns `count`.
    std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) override;

    /// Prints the catalogue text of `key`; a key without a section gives an empty line.
    void PrintMessage(const OString& key);
    /// The same with every "%1" replaced by `argument` as it stands.
    void PrintMessage(const OString& key, const OString& argument);
    /// Prints one line of plain text.
    void PrintText(const OString& text);
    /// The catalogue text of `key`; empty without a section.
    OString FetchMessage(const OString& key);

  private:
    TextResource m_catalogue;
    const bool* m_quiet;
};
