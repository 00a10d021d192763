// The one exception of the automation layer: a failing status with the server's error information.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace kemba {

/// A failing status (HRESULT), where the server gave it its error information, and a message text made on
/// first use.
class ComError {
  public:
    /// Takes over the caller's reference to `information`, which may be null.
    explicit ComError(HRESULT status, IErrorInfo* information = nullptr) noexcept;
    ComError(const ComError& other) noexcept;
    ComError& operator=(const ComError&) = delete;
    ~ComError();

    HRESULT GetStatus() const { return m_status; }
    /// The error information, still owned by this error; may be null.
    IErrorInfo* GetInformation() const { return m_information; }
    /// The system's text for the status without its line end, or a text with the status's number; owned by
    /// this error.
    const wchar_t* GetMessageText() const;

  private:
    HRESULT m_status;
    IErrorInfo* m_information;            // owned
    mutable wchar_t* m_message = nullptr; // from LocalAlloc, owned
};

} // namespace kemba
