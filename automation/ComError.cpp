// Status, error information and message text of a failed automation call.
#include "automation/ComError.h"

#include <cwchar>
#include <new>
#include <utility>

#include "automation/Owners.h"

namespace kemba {
namespace {

/// Statuses that interfaces define for themselves, numbered from the first one on.
constexpr unsigned long kFirstInterfaceStatus = 0x80040200;
constexpr unsigned long kLastInterfaceStatus = 0x8004FFFF;

constexpr std::size_t kMessageCharacters = 32;

/// Removes one line end, LF or CR LF, from a text of at least 2 characters.
void RemoveLineEnd(wchar_t* text) {
    const std::size_t length = std::wcslen(text);
    if (length < 2 || text[length - 1] != L'\n') {
        return;
    }
    text[length - 1] = 0;
    if (text[length - 2] == L'\r') {
        text[length - 2] = 0;
    }
}

} // namespace

ComError::ComError(HRESULT status, ComPtr<IErrorInfo> information) noexcept
    : m_status(status), m_information(std::move(information)) {}

ComError::ComError(const ComError& other) noexcept
    : m_status(other.m_status), m_information(ComPtr<IErrorInfo>::Share(other.Information())) {}

const wchar_t* ComError::GetMessageText() const {
    if (!m_message) {
        m_message = SystemText(m_status);
        if (m_message) {
            RemoveLineEnd(m_message.get());
        } else {
            m_message = NumberText(m_status);
        }
    }
    return m_message.get();
}

/// The system's text, or null.
ComError::Message ComError::SystemText(HRESULT status) {
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, static_cast<DWORD>(status), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                   reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    return Message(text);
}

/// A text with the status's number.
ComError::Message ComError::NumberText(HRESULT status) {
    Message text(static_cast<wchar_t*>(LocalAlloc(LPTR, kMessageCharacters * sizeof(wchar_t))));
    if (!text) {
        throw std::bad_alloc();
    }
    const auto number = static_cast<unsigned long>(status);
    if (number > kFirstInterfaceStatus && number <= kLastInterfaceStatus) {
        wsprintfW(text.get(), L"IDispatch error #%d", static_cast<int>(number - kFirstInterfaceStatus));
    } else {
        wsprintfW(text.get(), L"Unknown error 0x%0lX", number);
    }
    return text;
}

} // namespace kemba
