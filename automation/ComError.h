// The one exception of the automation layer: a failing status with the server's error information.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include "automation/Owners.h"
#include "core/Handles.h"

namespace kemba {

/// A failing status (HRESULT), where the server gave it its error information, and a message text made on
/// first use.
class ComError {
  public:
    /// `information` may be null.
    explicit ComError(HRESULT status, ComPtr<IErrorInfo> information = {}) noexcept;
    ComError(const ComError& other) noexcept;
    ComError& operator=(const ComError&) = delete;

    HRESULT Status() const { return m_status; }
    /// The error information, still owned by this error; may be null.
    IErrorInfo* Information() const { return m_information.Get(); }
    /// The system's text for the status without its line end, or a text with the status's number; owned by
    /// this error. Throws std::bad_alloc when there is no memory for either.
    const wchar_t* GetMessageText() const;

  private:
    using Message = OCore::UniqueLocal<wchar_t>;

    static Message SystemText(HRESULT status);
    static Message NumberText(HRESULT status);

    HRESULT m_status;
    ComPtr<IErrorInfo> m_information;
    mutable Message m_message;
};

} // namespace kemba
