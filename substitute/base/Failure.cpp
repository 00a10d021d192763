// Failures of Windows calls, and error information.
#include "substitute/base/Failure.h"

#include <oleauto.h>

#include <new>
#include <string>
#include <string_view>

#include "automation/Owners.h"
#include "core/Handles.h"
#include "substitute/base/NumberText.h"

namespace kemba::substitute {
namespace {

/// The system's words for a Win32 code or an HRESULT on one line, or an empty text if it has none.
std::wstring SystemWords(DWORD code) {
    wchar_t* allocated = nullptr;
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                            FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                        nullptr, code, 0, reinterpret_cast<wchar_t*>(&allocated), 0, nullptr);
    const OCore::UniqueLocal<wchar_t> text(allocated);
    std::wstring words(text ? text.get() : L"", text ? length : 0);
    words.erase(words.find_last_not_of(L" \r\n") + 1);
    return words;
}

Failure Describe(HRESULT status, const std::wstring& what, DWORD code, const std::wstring& codeText) {
    const std::wstring words = SystemWords(code);
    return {status, what + L": " + (words.empty() ? codeText : words + L" (" + codeText + L")")};
}

void SetDescription(REFIID iid, const std::wstring& description) noexcept {
    ComPtr<ICreateErrorInfo> information;
    if (FAILED(CreateErrorInfo(information.Put()))) {
        return;
    }
    // The texts are copied; neither is changed.
    information->SetGUID(iid);
    information->SetSource(const_cast<wchar_t*>(kServerName));
    information->SetDescription(const_cast<wchar_t*>(description.c_str()));
    ComPtr<IErrorInfo> readable;
    if (SUCCEEDED(
            information->QueryInterface(__uuidof(IErrorInfo), reinterpret_cast<void**>(readable.Put())))) {
        SetErrorInfo(0, readable.Get());
    }
}

} // namespace

Failure WindowsFailure(const std::wstring& what, DWORD error) {
    return Describe(HRESULT_FROM_WIN32(error), what, error, L"error " + NumberText(error));
}

Failure ComFailure(const std::wstring& what, HRESULT status) {
    const auto code = static_cast<DWORD>(status);
    return Describe(status, what, code, L"0x" + NumberText(code, 8, kHexadecimalDigits));
}

void ThrowIfFailed(HRESULT status, const wchar_t* what) {
    if (FAILED(status)) {
        throw ComFailure(what + std::wstring(L" failed"), status);
    }
}

void ThrowIfError(DWORD error, const wchar_t* what) {
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(what + std::wstring(L" failed"), error);
    }
}

void ThrowIfError(DWORD error, const std::wstring& what) {
    ThrowIfError(error, what.c_str());
}

Failure CurrentFailure() noexcept {
    try {
        try {
            throw;
        } catch (const Failure& failure) {
            return failure;
        } catch (const std::bad_alloc&) {
            return {E_OUTOFMEMORY, L"out of memory"};
        } catch (...) { // the runtime's own words say nothing to a client
            return {E_FAIL, L"unexpected failure"};
        }
    } catch (...) { // not even room for the words
        return {E_OUTOFMEMORY, {}};
    }
}

HRESULT ReportCurrentException(REFIID iid, const wchar_t* operation, std::wstring_view printer) noexcept {
    const Failure failure = CurrentFailure();
    try {
        std::wstring description = operation;
        if (!printer.empty()) {
            description.append(L" on printer \"").append(printer).append(L"\"");
        }
        SetDescription(iid, description + L": " + failure.reason);
    } catch (...) {
        SetErrorInfo(0, nullptr); // the status has to do
    }
    return failure.status;
}

} // namespace kemba::substitute
