// Text for consoles, files and pipes.
#include "substitute/server/Console.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "core/Handles.h"

namespace kemba::substitute {
namespace {

bool WriteBytes(HANDLE output, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            written == 0) {
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

bool WriteUnits(HANDLE console, std::wstring_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ||
            written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

void Write(DWORD which, std::wstring_view text) {
    const HANDLE given = GetStdHandle(which);
    if (given && given != INVALID_HANDLE_VALUE && GetFileType(given) != FILE_TYPE_UNKNOWN) {
        WriteText(given, text);
        return;
    }
    AttachConsole(ATTACH_PARENT_PROCESS); // fails if that was done before
    const OCore::UniqueHandle console =
        OCore::OwnFile(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (console) {
        WriteText(console.get(), text);
    }
}

} // namespace

bool WriteText(HANDLE output, std::wstring_view text) {
    if (text.empty()) {
        return true;
    }
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode)) {
        return WriteUnits(output, text);
    }
    const auto length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    return size > 0 &&
           WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes.data(), size, nullptr, nullptr) ==
               size &&
           WriteBytes(output, bytes);
}

void Say(std::wstring_view text) {
    Write(STD_OUTPUT_HANDLE, text);
}

void Complain(std::wstring_view text) {
    Write(STD_ERROR_HANDLE, text);
}

} // namespace kemba::substitute
