// Writing lines of text, to the null device, to which standard output leads too.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "bench/micro/Micro.h"
#include "core/Handles.h"
#include "core/OFile.h"
#include "core/OStream.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"

namespace {

constexpr const wchar_t* kLine = L"The printer 'Dock 12' is not found.";
constexpr char kBareLine[] = "The printer 'Dock 12' is not found.";
constexpr std::uint32_t kBufferSize = 1024;

auto Printing() {
    static const bool quiet = false;
    return [console = std::make_shared<ConsoleOutput>(quiet)] {
        console->PrintText(kLine);
        return console->GetFill();
    };
}

auto BarePrinting() {
    return [] {
        for (const std::string_view part : {std::string_view(kBareLine), std::string_view("\r\n")}) {
            static_cast<void>(std::fwrite(part.data(), 1, part.size(), stdout));
            static_cast<void>(std::fflush(stdout));
        }
        return stdout;
    };
}

auto Writing(std::uint32_t bufferSize) {
    auto file = std::make_shared<OFile>();
    file->Open(L"NUL", OFile::kWrite);
    file->SetBufferSize(bufferSize);
    return [file, line = OString(kBareLine)] {
        *file << line << OCore::EndOfLine;
        return file->GetFill();
    };
}

/// A buffer of the program's own, or none.
auto BareWriting(std::uint32_t bufferSize) {
    std::shared_ptr<void> null = OCore::OwnFile(
        CreateFileW(L"NUL", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return [file = std::move(null), buffer = std::string(), bufferSize]() mutable {
        DWORD written = 0;
        for (std::string_view part : {std::string_view(kBareLine), std::string_view("\r\n")}) {
            if (bufferSize == 0) {
                WriteFile(file.get(), part.data(), static_cast<DWORD>(part.size()), &written, nullptr);
                continue;
            }
            const auto fits = std::min<std::size_t>(part.size(), bufferSize - buffer.size());
            buffer.append(part.substr(0, fits));
            if (buffer.size() == bufferSize) {
                WriteFile(file.get(), buffer.data(), bufferSize, &written, nullptr);
                buffer.assign(part.substr(fits));
            }
        }
        return written;
    };
}

} // namespace

void micro::RegisterWriting() {
    Pair("Write/Console", Printing, BarePrinting);
    for (const std::uint32_t bufferSize : {0U, kBufferSize}) {
        Pair(
            "Write/File/" + std::to_string(bufferSize), [bufferSize] { return Writing(bufferSize); },
            [bufferSize] { return BareWriting(bufferSize); });
    }
}
