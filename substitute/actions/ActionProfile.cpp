// Finding and reading action profiles.
#include "substitute/actions/ActionProfile.h"

#include "substitute/base/AbsolutePath.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Handles.h"
#include "substitute/objects/ContractTypes.h"

namespace kemba::substitute {
namespace {

/// The name with "_" for what no file name may have.
std::wstring FileNameFor(std::wstring name) {
    for (wchar_t& character : name) {
        if (character < L' ' || std::wstring_view(L"<>:\"/\\|?*").find(character) != std::wstring::npos) {
            character = L'_';
        }
    }
    return name + L".profile";
}

/// All bytes of the file; nothing when there is none. Throws Failure.
std::optional<std::string> ReadProfile(const std::wstring& path) {
    const auto fail = [&](DWORD error) {
        return WindowsFailure(L"reading the action profile \"" + path + L"\" failed", error);
    };
    const UniqueHandle file =
        OwnFile(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
            return std::nullopt;
        }
        throw fail(error);
    }
    if (GetFileType(file.get()) != FILE_TYPE_DISK) {
        return std::nullopt; // a printer called as a device is
    }
    std::string bytes(ActionProfiles::kLargestFile + 1, '\0');
    DWORD count = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr)) {
        throw fail(GetLastError());
    }
    if (count == bytes.size()) {
        throw fail(ERROR_FILE_TOO_LARGE);
    }
    bytes.resize(count);
    return bytes;
}

} // namespace

std::wstring ActionProfileFolder(HKEY root, const wchar_t* key) {
    constexpr wchar_t kValue[] = L"ActionProfiles";
    std::wstring text(32'767, L'\0'); // the longest path
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS error = RegGetValueW(root, key, kValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    if (error == ERROR_FILE_NOT_FOUND) {
        const std::wstring program = ProgramPath();
        return program.substr(0, program.rfind(L'\\') + 1) + L"profiles";
    }
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"reading the registry value \"ActionProfiles\" failed",
                             static_cast<DWORD>(error));
    }
    text.resize(size / sizeof(wchar_t) - 1); // the size counts the zero
    if (!IsAbsolutePath(text)) {
        throw WindowsFailure(L"the registry value \"ActionProfiles\" is no absolute path",
                             ERROR_BAD_PATHNAME);
    }
    return text;
}

std::optional<ActionProfile> ActionProfiles::Find(const std::wstring& printer,
                                                  const std::wstring& driver) const {
    const std::wstring folder = m_folder();
    for (const std::wstring& name : {printer, driver}) {
        const std::wstring path = folder + L"\\" + FileNameFor(name);
        if (const std::optional<std::string> text = ReadProfile(path)) {
            return ParseActionProfile(*text, path);
        }
    }
    return std::nullopt;
}

} // namespace kemba::substitute
