// Texts that cross the automation boundary in a test's own calls.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "automation/Owners.h"

namespace kit {

/// A BSTR argument for one call.
class InText {
  public:
    explicit InText(std::wstring_view text) : m_text(kemba::OwnedBstr::Copy(text)) {}
    operator BSTR() const { return m_text.Get(); }

  private:
    kemba::OwnedBstr m_text;
};

/// A text as it was received, zeros within it included; "(null)" for none.
inline std::wstring Received(const kemba::OwnedBstr& text) {
    return text ? std::wstring(text.Get(), SysStringLen(text.Get())) : L"(null)";
}

/// Calls one operation with an out text; `text` gets it, or "(null)".
template<class Object, class Operation>
HRESULT ReadText(Object& object, Operation operation, std::wstring& text) {
    kemba::OwnedBstr out;
    const HRESULT status = (object.*operation)(out.Put());
    text = Received(out);
    return status;
}

} // namespace kit
