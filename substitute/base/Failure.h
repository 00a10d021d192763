// What goes wrong inside the server, and the one place where it becomes a status and error information.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kemba::substitute {

/// The source that the error information names.
inline constexpr wchar_t kServerName[] = L"kemba-dal";

/// An exception: the status that the caller is to get and the reason in words.
struct Failure {
    HRESULT status;
    std::wstring reason;
};

/// A failed Windows call: `what` was tried, `error` is the Win32 code; the reason adds the system's words and
/// the code.
Failure WindowsFailure(const std::wstring& what, DWORD error);
/// A failed COM call, likewise; the code is given in hexadecimal.
Failure ComFailure(const std::wstring& what, HRESULT status);
/// Throw the failure, "`what` failed" being its words, if the status or the error code is one.
void ThrowIfFailed(HRESULT status, const wchar_t* what);
void ThrowIfError(DWORD error, const wchar_t* what);
void ThrowIfError(DWORD error, const std::wstring& what);

/// Maps the exception being handled to a failure, in words of ours whatever it is; for catch blocks only.
Failure CurrentFailure() noexcept;

/// Maps the exception being handled to its status and leaves error information about the call with the
/// thread: which operation failed, on which printer (an empty name while there is none), and why. For catch
/// blocks only.
HRESULT ReportCurrentException(REFIID iid, const wchar_t* operation, std::wstring_view printer) noexcept;

} // namespace kemba::substitute
