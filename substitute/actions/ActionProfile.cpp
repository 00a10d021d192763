// Finding and reading action profiles.
#include "substitute/actions/ActionProfile.h"

#include <optional>
#include <string>

#include "substitute/base/Failure.h"
#include "substitute/base/InputFile.h"
#include "substitute/base/Paths.h"

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

/// All bytes of the file; nothing when there is none, nor when a printer is called as a device is. Throws
/// Failure.
std::optional<std::string> ReadProfile(const std::wstring& path) {
    try {
        return InputFile(L"action profile", path).ReadAll<std::string>(ActionProfiles::kLargestFile);
    } catch (const Failure& failure) {
        for (const long missing : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_BAD_FILE_TYPE}) {
            if (failure.status == HRESULT_FROM_WIN32(missing)) {
                return std::nullopt;
            }
        }
        throw;
    }
}

} // namespace

std::wstring ActionProfileFolder(HKEY root, const wchar_t* key) {
    constexpr wchar_t kValue[] = L"ActionProfiles";
    std::wstring text(32'767, L'\0'); // the longest path
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS error = RegGetValueW(root, key, kValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    if (error == ERROR_FILE_NOT_FOUND) {
        return std::wstring(FolderOf(ProgramPath())) + L"profiles";
    }
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"reading the registry value \"ActionProfiles\" failed",
                             static_cast<DWORD>(error));
    }
    text.resize(size / sizeof(wchar_t));
    text.erase(text.find_last_not_of(L'\0') + 1); // zeros at the end may be there or not
    if (!IsAbsolutePath(text) || text.find(L'\0') != text.npos) {
        throw WindowsFailure(L"the registry value \"ActionProfiles\" is no absolute path",
                             ERROR_BAD_PATHNAME);
    }
    if (IsDevicePath(FullPath(text))) {
        throw WindowsFailure(L"the registry value \"ActionProfiles\" names a device", ERROR_BAD_PATHNAME);
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
